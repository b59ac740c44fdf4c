// A control on one parameter of a unit outside the list of knobs: bypass, tap and their like.
#pragma once

#include "core/Parameter/Control.h"
#include "core/Parameter/Parameter.h"

template <typename T>
class UnitControl final : public Control<T> {
public:
    explicit UnitControl(Parameter<T>& parameter) : parameter_(parameter) { parameter_.connectControl(this); }
    ~UnitControl() override { parameter_.disconnectControl(this); }

    using Control<T>::send;
    T get() const { return parameter_.get(); }
    void init(const T& value) {
        parameter_.init(value);
        parameter_.notify();
    }

private:
    Parameter<T>& parameter_;
};
