// One valve of a preamp: its static transfer at three times the rate, then a 5 Hz high-pass for the coupling
// capacitor at the system rate. Volts in, volts out, 10 samples of delay.
#pragma once

#include "algorithms/amp/CubicSplineDistortionMinMax.h"
#include "algorithms/amp/PlanarHighPass.h"
#include "math/UpDownSampler.h"
#include "tables/ValveCurve.h"

class ValveStage {
public:
    // blockLength: samples per call. sampleRate: Hz. inputRange, outputMin, outputMax: volts, see
    // CubicSplineDistortionMinMax.
    ValveStage(int blockLength, float sampleRate, float inputRange, float outputMin, float outputMax,
               const tables::ValveCurve& curve);

    // blockLength samples in place.
    void process(float* buffer);

private:
    UpDownSampler sampler_;
    CubicSplineDistortionMinMax transfer_;
    PlanarHighPass highPass_;
    fft::AlignedFloats planes_;
    int blockLength_;
};
