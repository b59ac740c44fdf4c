// What stands behind a cabinet's convolver: a low-pass, a high-pass and an output level, all on ramps.
//
//   in -> low-pass (2 poles, q 0.7071) -> high-pass (2 poles, q 0.7071) -> level -> out
//
// Frequencies and level run after their targets with a time constant of 10 ms; coefficients are designed per
// sample while a frequency moves, and not at all while it stands.
//
// Threads: setters on control threads, process and follow on the audio thread.
#pragma once

#include "algorithms/cabsim/RampedFrequency.h"
#include "math/OnePoleRamp.h"
#include "math/SVHpf.h"
#include "math/SVLpf.h"

class CabinetTone {
public:
    // Open: 20 Hz to 20 kHz at 0 dB. sampleRate in Hz.
    explicit CabinetTone(float sampleRate);

    // isInit: there at once. A value that is not finite is ignored; frequencies are at least 1 Hz.
    void setHPF(float hz, bool isInit);
    void setLPF(float hz, bool isInit);
    void setOutputLevel(float db, bool isInit);

    // n samples in place.
    void process(float* buffer, int n);

    // n samples without a cabinet: the frequencies move on and the filters are empty, so that nothing jumps
    // when the cabinet returns.
    void follow(int n);

    float hpfHz() const { return hpfFreqRamp_.targetHz(); }
    float lpfHz() const { return lpfFreqRamp_.targetHz(); }

private:
    void filter(float* buffer, int n);

    OnePoleRamp level_;
    SVHpf highPass_;
    SVLpf lowPass_;
    RampedFrequency<SVHpf> hpfFreqRamp_;
    RampedFrequency<SVLpf> lpfFreqRamp_;
};
