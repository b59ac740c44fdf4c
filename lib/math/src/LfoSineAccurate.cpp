#include "math/LfoSineAccurate.h"

#include <cmath>

float LfoSineAccurate::tick() {
    return offset_ + std::sin(SinePhase::radians(phase_.next())) * amplitude_;
}

void LfoSineAccurate::tick(float* out, int count) {
    for (int n = 0; n < count; ++n)
        out[n] = LfoSineAccurate::tick();
}
