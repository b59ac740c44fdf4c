// The push-pull power amp of the two-channel reverb amp, at three times the rate. Volts in, volts out; about
// 10 samples of delay.
//
//   in -> up 3x -> x 0.378 -+-> phase inverter A -> 5 Hz high-pass -> x 1.245 -> coupling A -> valve A -+
//                           |                                                                          sum
//                           +-> phase inverter B -> 5 Hz high-pass -> x 1.212 -> coupling B -> valve B -+
//                                                                                                       |
//   out <- 5 Hz high-pass <- x 1.349 <- down 3x <- + rest current of the pair <-------------------------+
//
// Each output valve's table holds one half wave and its rest value; the sum takes the rest of the pair out.
// The coupling capacitors charge when a valve's grid conducts and push the pair towards cut-off.
//
// Audio thread; nothing allocates after construction.
#pragma once

#include "algorithms/amp/BiasShiftAcCouplingCap.h"
#include "algorithms/amp/CubicSplineDistortionMinMax.h"
#include "algorithms/amp/PlanarHighPass.h"
#include "math/UpDownSampler.h"
#include "math/fft/AlignedFloats.h"

class ArvelReverb65PowerAmp {
public:
    // blockLength: samples per call, at sampleRate (Hz).
    ArvelReverb65PowerAmp(int blockLength, float sampleRate);

    // blockLength samples in place.
    void process(float* buffer);

private:
    const int blockLength_;
    UpDownSampler sampler_;
    CubicSplineDistortionMinMax phaseInverterA_;
    CubicSplineDistortionMinMax phaseInverterB_;
    PlanarHighPass inverterHighPassA_;
    PlanarHighPass inverterHighPassB_;
    BiasShiftAcCouplingCap couplingA_;
    BiasShiftAcCouplingCap couplingB_;
    CubicSplineDistortionMinMax outputValveA_;
    CubicSplineDistortionMinMax outputValveB_;
    PlanarHighPass outputHighPass_;
    fft::AlignedFloats legA_;
    fft::AlignedFloats legB_;
};
