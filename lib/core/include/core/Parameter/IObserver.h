// A receiver of a parameter's changes, whatever its value type.
#pragma once

#include <typeinfo>

class IObserver {
public:
    // The value type that the observer takes.
    virtual const std::type_info& getType() const = 0;
    virtual ~IObserver() = default;
};
