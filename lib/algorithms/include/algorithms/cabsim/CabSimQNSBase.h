// A measured cabinet: nothing but its impulse response.
#pragma once

#include <span>

class CabSimQNSBase {
public:
    virtual ~CabSimQNSBase() = default;

    // At the system's rate, as long as the object lives. Empty when there is none. Control threads.
    virtual std::span<const float> getImpulseResponse() const = 0;
};
