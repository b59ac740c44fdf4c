// One property of an owner, reached through a clone of the slot it is built from.
#pragma once

#include <memory>

#include "core/Parameter/PropertySlot.h"

template <typename T>
class Property {
public:
    explicit Property(const PropertySlotBase<T>& slot) : slot_(slot.clone()) {}
    virtual ~Property() = default;

    virtual T get() const { return slot_->get(); }
    // Moves to the value smoothly.
    virtual void set(const T& value) { slot_->set(value); }
    // Is at the value at once.
    virtual void init(const T& value) { slot_->init(value); }

private:
    std::unique_ptr<PropertySlotBase<T>> slot_;
};
