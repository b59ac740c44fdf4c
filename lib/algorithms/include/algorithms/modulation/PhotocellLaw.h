// How far a photoresistor shunts the signal, by how bright its lamp is.
//
//   r(z) = 1.04 (1 + e^z)^(-1/2.4) - 0.019
//
// A sigmoid that falls from 1.021 to -0.019: the cell reacts at once to light and hangs on after it.
#pragma once

#include "math/FastPower.h"

// z from -40 to 40; error below 2e-6.
inline float photocellLaw(float z) {
    constexpr float kLog2E = 1.442695f;
    constexpr float kExponent = -1.0f / 2.4f;
    return 1.04f * fastExp2(kExponent * fastLog2(1.0f + fastExp2(kLog2E * z))) - 0.019f;
}
