// One channel's tone controls: bright switch, then the four-knob circuit.
//
// A knob position k, 0 to 1, goes through its ten-point taper (panel number 1 + 9 k) and is limited to 0.0001
// and 0.999 before it reaches the circuit's pot. The volume knob moves the bright capacitor as well, switched
// in or not.
//
// Threads: setters on the control side, one thread at a time; process on the audio thread. isInit true takes
// a value at once, false lets the circuit's 3.2 ms ramps or the switch's 20 ms fade bring it in.
#pragma once

#include "algorithms/amp/ArvelReverb65BrightSwitchFilter.h"
#include "algorithms/amp/ToneCircuit.h"
#include "math/TaperPiecewiseLinear.h"

class ArvelReverb65Tonestack {
public:
    // The pots' laws, panel 1 to 10.
    struct Tables {
        float bass[10];
        float mid[10];
        float treble[10];
        float volume[10];
    };

    ArvelReverb65Tonestack(const ArvelReverb65Tonestack&) = delete;
    ArvelReverb65Tonestack& operator=(const ArvelReverb65Tonestack&) = delete;

    void setBass(float knob, bool isInit);
    void setMid(float knob, bool isInit);
    void setTreble(float knob, bool isInit);
    void setVolume(float knob, bool isInit);
    void setBrightSw(bool on, bool isInit);

    // One block in place, volts.
    void process(float* buffer);

protected:
    // tag: the derived class, for the log.
    ArvelReverb65Tonestack(const char* tag, int blockLength, float sampleRate, const Tables& tables);
    ~ArvelReverb65Tonestack() = default;

private:
    virtual PushbuttonFilter& brightSwitch() = 0;
    virtual ArvelReverb65VolumeBrightCap& brightCap() = 0;
    float potPosition(const char* name, const TaperPiecewiseLinear& taper, float knob) const;

    const char* const tag_;
    const int blockLength_;
    const TaperPiecewiseLinear bassTaper_;
    const TaperPiecewiseLinear midTaper_;
    const TaperPiecewiseLinear trebleTaper_;
    const TaperPiecewiseLinear volumeTaper_;
    ToneCircuit circuit_;
};

class ArvelReverb65NormalTonestack final : public ArvelReverb65Tonestack {
public:
    ArvelReverb65NormalTonestack(int blockLength, float sampleRate);

private:
    PushbuttonFilter& brightSwitch() override { return brightSwitch_; }
    ArvelReverb65VolumeBrightCap& brightCap() override { return brightSwitch_.brightCap(); }

    ArvelReverb65NormalPreampBrightSwitchFilter brightSwitch_;
};

class ArvelReverb65VibratoTonestack final : public ArvelReverb65Tonestack {
public:
    ArvelReverb65VibratoTonestack(int blockLength, float sampleRate);

private:
    PushbuttonFilter& brightSwitch() override { return brightSwitch_; }
    ArvelReverb65VolumeBrightCap& brightCap() override { return brightSwitch_.brightCap(); }

    ArvelReverb65VibratoPreampBrightSwitchFilter brightSwitch_;
};
