// The vibrato channel of the two-channel reverb amp: three valves, with the spring tank's send and return
// before the third and the vibrato behind it. Volts in, volts out; 30 samples of delay.
//
//   in -> valve 1 -> x 1.259 -> bright switch, tone circuit -> x 1.274 -> valve 2 -> x 1.117 -+-> tank
//      +-------------------------------------------------------------------------------------+     |
//      +-> x 0.0405 -> 5 dB shelf at 5 kHz -> + <- 10 kHz low-pass <- tank, one block late <-------+
//      -> valve 3 -> x 1.084 -> vibrato -> x 0.516 -> out
//
// The vibrato comes after the return, so that it modulates the reverb's tail too. The tank runs on a thread
// of its own.
#pragma once

#include <atomic>
#include <vector>

#include "algorithms/amp/ArvelReverb65Tonestack.h"
#include "algorithms/amp/CorvinArvel65ReverbThread.h"
#include "algorithms/amp/ReverbHandover.h"
#include "algorithms/amp/ValveStage.h"
#include "algorithms/modulation/OpticalTremoloCell.h"
#include "algorithms/reverb/MeasuredSpringTank.h"
#include "math/FirstOrderShelf.h"
#include "math/OnePoleLowPass.h"

class ArvelReverb65VibratoPreamp {
public:
    // blockLength: samples per call, at sampleRate (Hz). The tank's thread starts here.
    ArvelReverb65VibratoPreamp(int blockLength, float sampleRate);

    // One block in place. Audio thread; waits for the tank's thread when that is late.
    void process(float* x);

    // The tone controls.
    ArvelReverb65Tonestack& tonestack() { return tonestack_; }

    // Control side, one thread at a time. Knobs 0 to 1; with isInit the value is there at once.
    void setReverb(float knob, bool isInit);
    void setReverbMute(bool on, bool isInit);
    // 0 is t20, any other t30. Keeps the taper and glides to the knob's position through it.
    void setReverbTaper(int index);
    void setSpeed(float knob, bool isInit) { tremolo_.setSpeed(knob, isInit); }
    void setIntensity(float knob, bool isInit) { tremolo_.setIntensity(knob, isInit); }
    void setTremoloMute(bool on, bool isInit) { tremolo_.setMute(on, isInit); }

private:
    const int blockLength_;
    ValveStage stage1_;
    ArvelReverb65VibratoTonestack tonestack_;
    ValveStage stage2_;
    FirstOrderShelf dryShelf_;
    OnePoleLowPass returnFilter_;
    ValveStage stage3_;
    OpticalTremoloCell tremolo_;
    std::vector<float> returnBuffer_;
    float reverbKnob_ = 0.0f;
    int reverbTaper_ = 0;
    MeasuredSpringTank reverb_;
    ReverbHandover handover_;
    CorvinArvel65ReverbThread reverbThread_;
};
