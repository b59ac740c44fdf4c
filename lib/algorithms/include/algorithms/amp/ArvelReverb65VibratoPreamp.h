// The vibrato channel of the two-channel reverb amp: three valves, with the spring tank's send and return
// before the third and the vibrato behind it. Volts in, volts out; 30 samples of delay.
//
//   in -> valve 1 -> x 1.259 -> bright switch, tone circuit -> x 1.274 -> valve 2 -> x 1.117 -> tank send
//      -> x 0.0405 -> 5 dB shelf at 5 kHz -> + tank return -> valve 3 -> x 1.084 -> vibrato -> x 0.516 -> out
//
// The vibrato comes after the return, so that it modulates the reverb's tail too. Neither tank nor vibrato
// cell hangs at its place: the return is silent, the vibrato's gain is 1, and their controls are kept.
#pragma once

#include "algorithms/amp/ArvelReverb65Tonestack.h"
#include "algorithms/amp/ValveStage.h"
#include "math/FirstOrderShelf.h"

class ArvelReverb65VibratoPreamp {
public:
    // What the channel's reverb and vibrato are asked for. Knobs 0 to 1.
    struct EffectControls {
        float reverb = 0.0f;
        float reverbLevel = 0.0f;  // the knob through its taper
        int reverbTaper = 0;       // 0 is t20, any other t30
        bool reverbMute = false;
        float speed = 0.0f;
        float intensity = 0.0f;
        bool tremoloMute = false;
    };

    // blockLength: samples per call, at sampleRate (Hz).
    ArvelReverb65VibratoPreamp(int blockLength, float sampleRate);

    // One block in place. Audio thread.
    void process(float* x);

    // The tone controls.
    ArvelReverb65Tonestack& tonestack() { return tonestack_; }

    // Control side, one thread at a time.
    void setReverb(float knob);
    void setReverbMute(bool on) { effects_.reverbMute = on; }
    // Keeps the taper and sends the knob's position through it anew.
    void setReverbTaper(int index);
    void setSpeed(float knob) { effects_.speed = knob; }
    void setIntensity(float knob) { effects_.intensity = knob; }
    void setTremoloMute(bool on) { effects_.tremoloMute = on; }
    const EffectControls& effects() const { return effects_; }

private:
    const int blockLength_;
    ValveStage stage1_;
    ArvelReverb65VibratoTonestack tonestack_;
    ValveStage stage2_;
    FirstOrderShelf dryShelf_;
    ValveStage stage3_;
    EffectControls effects_;
};
