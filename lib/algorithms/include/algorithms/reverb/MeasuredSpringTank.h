// The reverb tank of the amps: a driver, the measured response of the springs, a recovery stage.
//
//   in -> high-pass 180 Hz -> driver (at 3 x) -> x 1.427 -> convolver -> x 0.000398
//      -> high-pass 370 Hz -> low-pass 1000 Hz -> recovery stage (at 3 x) -> x level x mute -> out
//
// Volts in, volts out. The valves' curves are in tables/SpringTankCurves.h; both lose their rest value, so
// silence stays silent. 20 samples of delay besides the springs' own. The knob's taper is the caller's: level
// is a gain.
#pragma once

#include <memory>
#include <optional>

#include "algorithms/amp/CubicSplineDistortionMinMax.h"
#include "math/DcBlocker.h"
#include "math/OnePoleLowPass.h"
#include "math/OnePoleRamp.h"
#include "math/ReverbConvolver.h"
#include "math/UpDownSampler.h"
#include "math/fft/AlignedFloats.h"
#include "tables/ValveCurve.h"

class MeasuredSpringTank {
public:
    // blockLength: samples per call, at sampleRate (Hz). response: as SpringTankResponse::get gives it; null
    // makes a silent tank. Starts the convolver's tail thread.
    MeasuredSpringTank(int blockLength, float sampleRate, std::shared_ptr<const PreparedResponse> response);

    // One block; the buffers are one or apart. One thread, the tank's own or the audio thread.
    void process(const float* in, float* out);

    // Control side. gain: linear, the knob behind its taper, 0 at construction; init jumps, else a ramp of
    // 20 ms.
    void setLevel(float gain, bool init);
    // Muted, the tank runs on: its tail comes back when the mute goes. Not muted at construction.
    void setMute(bool on, bool init);

private:
    // One of the two valves at three times the rate.
    struct Stage {
        Stage(int blockLength, float inputRange, float outputMin, float outputMax,
              const tables::ValveCurve& curve);
        void process(float* buffer);

        UpDownSampler sampler;
        CubicSplineDistortionMinMax transfer;
        fft::AlignedFloats planes;
    };

    const int blockLength_;
    DcBlocker driveHighPass_;
    Stage drive_;
    std::optional<ReverbConvolver> convolver_;
    DcBlocker recoveryHighPass_;
    OnePoleLowPass recoveryLowPass_;
    Stage recovery_;
    OnePoleRamp level_;
    OnePoleRamp mute_;
    fft::AlignedFloats sent_;
    fft::AlignedFloats returned_;
    fft::AlignedFloats levels_;
    fft::AlignedFloats mutes_;
};
