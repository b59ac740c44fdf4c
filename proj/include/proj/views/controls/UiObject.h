// A control of a page, bound to an action for as long as it lives.
#pragma once

class UiObject {
public:
    UiObject() = default;
    virtual ~UiObject() = 0;
    UiObject(const UiObject&) = delete;
    UiObject& operator=(const UiObject&) = delete;
};

inline UiObject::~UiObject() = default;
