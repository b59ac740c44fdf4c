// LfoSine by the library's sine, for effects where the parabola's 0.1 per cent would show.
#pragma once

#include "math/LfoSine.h"

class LfoSineAccurate : public LfoSine {
public:
    using LfoSine::LfoSine;

    float tick() override;
    void tick(float* out, int count) override;
};
