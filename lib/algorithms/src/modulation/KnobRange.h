// What a core does with a knob beyond its range.
#pragma once

#include "utility/Log.h"

// The knob if it lies in 0 to 1; else an error in the log and the other value. Control threads.
inline float knobOr(float other, const char* name, float knob) {
    if (knob >= 0.0f && knob <= 1.0f) return knob;
    TVK_ERROR("%s %f is out of range", name, knob);
    return other;
}
