// A receiver of a parameter's changes, T one of float, int, bool and std::string.
#pragma once

#include "core/Parameter/IObserver.h"

template <typename T>
class Observer : public IObserver {
public:
    const std::type_info& getType() const override { return typeid(T); }
    // Called on the thread that changed the parameter, and once when the observer is added.
    virtual void update(const T& value) = 0;
};
