// The kinds of hardware controls: a knob, a switch with two positions, a switch with several, a button.
#pragma once

#include "proj/views/controls/SignalBinding.h"
#include "proj/views/controls/UiObject.h"

class UiObjectHwPot final : public UiObject, private SignalBinding<float> {
public:
    using SignalBinding::SignalBinding;
};

class UiObjectHwOnOffSwitch final : public UiObject, private SignalBinding<bool> {
public:
    using SignalBinding::SignalBinding;
};

class UiObjectHwMultiPositionSwitch final : public UiObject, private SignalBinding<int> {
public:
    using SignalBinding::SignalBinding;
};

class UiObjectHwButton final : public UiObject, private SignalBinding<> {
public:
    using SignalBinding::SignalBinding;
};
