// The chain of two plain integrators, one for each of several channels, with a cheap sine for its tuning.
//
//   low  <- low + f band
//   high  = sqrt(d) x - low - d band
//   band <- band + f high
//
//   f = 2 sin(pi freqHz / (sampleRate oversampling)),  d = 1 / q
//
// run `oversampling` times for each sample, with the input held. The sine is parabolic, within 0.1 per cent
// of full scale over the whole circle.
//
// d above 2, or a q at or below 0, is the error "Q outside of range error." and leaves what was set before;
// before the first valid set that is f = 0.5, d = 0.5. Stable while f^2 + 2 d f < 4.
//
// Source: H. Chamberlin, Musical Applications of Microprocessors, 2nd edition, chapter 14.
//
// Threads: process and clear on the audio thread, or while it stands; setters on the control side, one thread
// at a time, with the state left as it is.
#pragma once

#include <vector>

#include "math/PublishedRecord.h"

class StateVariableFilterMacro {
public:
    // The integrator output that is taken.
    enum class Mode { LowPass, BandPass, HighPass };

    // channels, oversampling: 1 or more. sampleRate and freqHz in Hz.
    StateVariableFilterMacro(int channels, int oversampling, Mode mode, float sampleRate, float freqHz,
                             float q);

    // Audio thread. n samples of one channel in place.
    void process(int channel, float* buffer, int n);

    void setFrequency(float freqHz);
    void setQ(float q);
    void setAll(float freqHz, float q);

    // Zeroes the state of every channel, and only it.
    void clear();

    // The parabolic sine behind f, for any x in radians.
    static float approximateSine(float x);

private:
    struct Coefficients {
        float f;
        float d;
        float gain;  // sqrt(d)
    };
    struct State {
        float low = 0.0f;
        float band = 0.0f;
    };
    template <Mode mode>
    void run(const Coefficients& coefficients, State& state, float* buffer, int n) const;
    float frequencyTerm(float freqHz) const;
    static bool isDampingInRange(float q);

    const int oversampling_;
    const Mode mode_;
    const float sampleRate_;
    std::vector<State> states_;
    PublishedRecord<Coefficients> coefficients_;
};
