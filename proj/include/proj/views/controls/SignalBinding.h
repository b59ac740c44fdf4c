// The binding of an action to a signal, which ends with the object: no call is under way on another thread
// once the destructor has returned.
#pragma once

#include <functional>
#include <utility>

#include "utility/Signal.h"

template <typename... Values>
class SignalBinding {
public:
    SignalBinding(nod::signal_type<Values...>& signal, std::function<void(Values...)> action)
        : connection_(signal.connect(std::move(action))) {}

private:
    nod::connection connection_;
};
