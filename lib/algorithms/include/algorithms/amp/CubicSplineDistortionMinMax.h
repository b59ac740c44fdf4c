// One valve's static transfer from volts to volts, stored as eight cubic segments.
//
//   x = limit(in / inputRange, -1, 1)
//   s = ((a x + b) x + c) x + d          segment i of the table, breakpoints[i-1] < x <= breakpoints[i]
//   out = h + s h + (outputMin - zeroInputOutput),   h = (outputMax - outputMin) / 2
//
// so that s = -1 stands for outputMin and s = 1 for outputMax, and a stage at rest gives 0 volts instead of
// its plate voltage. The table is folded in double precision into one cubic per segment about the segment's
// own centre, which a float evaluates within rounding; the segment that holds 0 is centred there, so silence
// gives exactly 0.
#pragma once

#include "math/fft/VectorKernels.h"

// The cubic of a table at x in double precision. segments: a, b, c, d of each. A value equal to a breakpoint
// belongs to the lower segment.
double evaluateEightSegments(const float (&segments)[8][4], const float (&breakpoints)[7], double x);

class CubicSplineDistortionMinMax {
public:
    // An output valve of a power amp keeps its rest value: the pair's sum takes it out once.
    enum class ZeroInput { Removed, Kept };

    // length: samples per call. inputRange: volts at the table's 1. outputMin, outputMax: volts. segments and
    // breakpoints are copied.
    CubicSplineDistortionMinMax(int length, float inputRange, float outputMin, float outputMax,
                                const float (&segments)[8][4], const float (&breakpoints)[7],
                                ZeroInput zeroInput = ZeroInput::Removed);

    // length samples in place.
    void process(float* buffer);
    // length samples; the buffers are one or apart.
    void process(const float* in, float* out) const;

    // Volts at the output for 0 at the input, before their removal.
    float zeroInputOutput() const { return zeroInputOutput_; }

private:
    int length_;
    float inputRange_;
    fft::CubicSegments curve_{};
    const fft::VectorKernels* kernels_;
    float zeroInputOutput_;
};
