// The two-channel reverb amp: two preamps, a push-pull power amp with a sagging supply, the speaker's load.
//
//   normal jack  -> x V -> normal preamp  -> 30 Hz high-pass -+
//                                                            sum -> 6 dB shelf at 9 kHz -> power amp ->
//                                                            supply sag
//   vibrato jack -> x V -> vibrato preamp -> 55 Hz high-pass -+        |
//                                                                      v
//                               speaker <- / 101 <-+- speaker impedance curve
//                                  line <- / 101 <- cabinet
//
// The channels meet at the sum and nowhere else. In: samples, full scale standing for V = sysFloatToVolts at
// the jack. Out: samples, 1.0 standing for the amp's full-power voltage of 101 V; the line feed is that of
// the speaker while no cabinet is there. Everything between is in volts.
//
// Threads: setters on the control side, one thread at a time; process on the audio thread. Setters take
// isInit as told at IStandardAmpAlgorithmInterface.
#pragma once

#include <string>
#include <vector>

#include "algorithms/amp/ArvelReverb65ImpedanceCurve.h"
#include "algorithms/amp/ArvelReverb65NormalPreamp.h"
#include "algorithms/amp/ArvelReverb65PowerAmp.h"
#include "algorithms/amp/ArvelReverb65PowerSupply.h"
#include "algorithms/amp/ArvelReverb65VibratoPreamp.h"
#include "algorithms/amp/StandardAmpAlgorithmInterface.h"
#include "algorithms/cabsim/UserIRQNS.h"
#include "math/BqHighShelf.h"
#include "math/OnePoleHighPass.h"

class ArvelReverb65 : public StandardAmpAlgorithmInterface {
public:
    static constexpr float kFullPowerVolts = 101.0f;

    // blockLength: samples per call, at sampleRate (Hz). sysFloatToVolts: volts of a full-scale sample at the
    // input jack.
    ArvelReverb65(int blockLength, float sampleRate, float sysFloatToVolts,
                  bool isSpeakerImpedanceCurveEnabled);

    // One block. Outputs may be the inputs.
    void process(const float* inNormal, const float* inVibrato, float* outSpeaker, float* outLine);

    // Both channels at once. Knobs 0 to 1.
    void setGain(float knob, bool isInit) override;
    void setBass(float knob, bool isInit) override;
    void setMid(float knob, bool isInit) override;
    void setTreb(float knob, bool isInit) override;
    void setBrightSw(bool on, bool isInit) override;
    // The pair's bias is fixed: no effect.
    void setBias(float value, bool isInit) override;
    void setSag(int index, bool isInit) override;

    // One channel. Knobs 0 to 1.
    void setNormalVolume(float knob, bool isInit) { normalPreamp_.tonestack().setVolume(knob, isInit); }
    void setNormalBass(float knob, bool isInit) { normalPreamp_.tonestack().setBass(knob, isInit); }
    void setNormalMid(float knob, bool isInit) { normalPreamp_.tonestack().setMid(knob, isInit); }
    void setNormalTreb(float knob, bool isInit) { normalPreamp_.tonestack().setTreble(knob, isInit); }
    void setNormalBright(bool on, bool isInit) { normalPreamp_.tonestack().setBrightSw(on, isInit); }
    void setVibratoVolume(float knob, bool isInit) { vibratoPreamp_.tonestack().setVolume(knob, isInit); }
    void setVibratoBass(float knob, bool isInit) { vibratoPreamp_.tonestack().setBass(knob, isInit); }
    void setVibratoMid(float knob, bool isInit) { vibratoPreamp_.tonestack().setMid(knob, isInit); }
    void setVibratoTreb(float knob, bool isInit) { vibratoPreamp_.tonestack().setTreble(knob, isInit); }
    void setVibratoBright(bool on, bool isInit) { vibratoPreamp_.tonestack().setBrightSw(on, isInit); }

    // Reverb and vibrato of the vibrato channel. Knobs 0 to 1; taper 0 is t20, any other t30.
    void setReverb(float knob, bool isInit) { vibratoPreamp_.setReverb(knob, isInit); }
    void setReverbMute(bool on, bool isInit) { vibratoPreamp_.setReverbMute(on, isInit); }
    void setReverbTaper(int index) { vibratoPreamp_.setReverbTaper(index); }
    void setSpeed(float knob, bool isInit) { vibratoPreamp_.setSpeed(knob, isInit); }
    void setIntensity(float knob, bool isInit) { vibratoPreamp_.setIntensity(knob, isInit); }
    void setTremoloMute(bool on, bool isInit) { vibratoPreamp_.setTremoloMute(on, isInit); }

    // The line feed's cabinet: a response's name or "none" (IRBase tells of names); filters limited to 20 to
    // 500 Hz and 1000 to 20000 Hz, level to -36 to 0 dB.
    void setCabinet(const std::string& name);
    void setCabinetHPF(float hz, bool isInit);
    void setCabinetLPF(float hz, bool isInit);
    void setCabinetLevel(float db, bool isInit);

private:
    const int blockLength_;
    const float sysFloatToVolts_;
    const bool isSpeakerImpedanceCurveEnabled_;
    ArvelReverb65NormalPreamp normalPreamp_;
    ArvelReverb65VibratoPreamp vibratoPreamp_;
    OnePoleHighPass normalHighPass_;
    OnePoleHighPass vibratoHighPass_;
    BqHighShelf mixShelf_;
    ArvelReverb65PowerAmp powerAmp_;
    ArvelReverb65PowerSupply powerSupply_;
    ArvelReverb65ImpedanceCurve impedanceCurve_;
    UserIRQNS cabinet_;
    std::vector<float> normal_;
    std::vector<float> vibrato_;
};
