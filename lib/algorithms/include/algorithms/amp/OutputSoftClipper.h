// Keeps a unit's output inside a threshold: a soft clip at five times the rate, linear up to three quarters
// of the threshold, then bending until it is flat below the threshold itself. Gain 1 below, 10.2 samples of
// delay.
#pragma once

#include "algorithms/amp/CubicSplineDistortionMinMax.h"
#include "math/UpDownSampler.h"

class OutputSoftClipper {
public:
    // blockLength: samples per call. thresholdDb: the curve works on x / T with T = 10^(-thresholdDb / 20),
    // so 0
    OutputSoftClipper(int blockLength, float thresholdDb, float sampleRate);

    // blockLength samples in place.
    void process(float* buffer);

private:
    int blockLength_;
    UpDownSampler sampler_;
    float threshold_;
    CubicSplineDistortionMinMax transfer_;
    fft::AlignedFloats planes_;
};
