// The two-integrator filter with trapezoidal integrators that all SV* classes run on.
//
//   t3 = x - ic2,  t1 = a1 ic1 + a2 t3,  t2 = ic2 + a2 ic1 + a3 t3
//   ic1 <- 2 t1 - ic1,  ic2 <- 2 t2 - ic2
//   y = m0 x + m1 t1 + m2 t2
//
//   g = tan(pi freqHz / sampleRate),  k = 1 / q,  a1 = 1 / (1 + g (g + k)),  a2 = g a1,  a3 = g a2
//
// t1 is the band-pass and t2 the low-pass of the analogue prototype under the bilinear transform, so the
// response is exact but for the warped frequency axis. Its state is that of integrators: a change of
// coefficients gives no step of its own, which is why it takes the place of a biquad where corners move fast.
//
// Source: A. Simper, Linear Trapezoidal Integrated State Variable Filter With Low Noise Optimisation, 2013.
//
// Frequencies are limited to sampleRate * 0.495. A q at or below 0 is an error line and becomes 0.707 in the
// constructor, 1.0 in a setter; a rate at or below 0 is an error line and 44100 Hz is taken.
#pragma once

#include "math/PublishedRecord.h"

struct TrapezoidalCoefficients {
    float a1 = 0.0f;
    float a2 = 0.0f;
    float a3 = 0.0f;
    float m0 = 0.0f;
    float m1 = 0.0f;
    float m2 = 0.0f;
};

struct TrapezoidalState {
    float ic1 = 0.0f;
    float ic2 = 0.0f;
};

// How one kind of filter turns its parameters into coefficients.
struct TrapezoidalLaw {
    const char* name;  // the class, for messages
    // rootGain: A = 10^(dB * 0.025). freqHz: above 0, at most sampleRate * 0.495. q: above 0.
    TrapezoidalCoefficients (*design)(double rootGain, double freqHz, double q, double sampleRate);
};

namespace trapezoidal {

extern const TrapezoidalLaw lowPass;    // gain not used
extern const TrapezoidalLaw highPass;   // gain not used
extern const TrapezoidalLaw bell;       // k = 1 / (q A)
extern const TrapezoidalLaw lowShelf;   // g / sqrt(A)
extern const TrapezoidalLaw highShelf;  // g sqrt(A)

}  // namespace trapezoidal

// Threads: process and clear on the audio thread, or while it stands; setters on one thread at a time, which
// may be the audio thread. A setter publishes the coefficients whole and leaves the state as it is.
class TrapezoidalFilter {
public:
    // One sample.
    float process(float x) {
        process(&x, 1);
        return x;
    }

    // n samples in place.
    void process(float* buffer, int n);

    void setFrequency(float freqHz);
    void setQ(float q);
    void setAll(float gainDb, float freqHz, float q);

    // Zeroes the state, and only it.
    void clear() { state_ = {}; }

    // What is stored, after its limits.
    float freqHz() const { return freqHz_; }
    float q() const { return q_; }

    // The coefficients designed last; on the setters' thread.
    const TrapezoidalCoefficients& coefficients() const { return coefficients_.latest(); }

    const TrapezoidalState& state() const { return state_; }

protected:
    TrapezoidalFilter(const TrapezoidalLaw& law, float gainDb, float freqHz, float q, float sampleRate);
    ~TrapezoidalFilter() = default;

    void applyGainDb(float gainDb);
    void applyGainLinear(float rootGain);

private:
    void storeGainDb(float gainDb);
    void storeFrequency(float freqHz);
    void design();

    TrapezoidalState state_;
    PublishedRecord<TrapezoidalCoefficients> coefficients_{{}};
    const TrapezoidalLaw& law_;
    float sampleRate_;
    float rootGain_ = 1.0f;
    float freqHz_ = 0.0f;
    float q_ = 1.0f;
};

// The kinds that have a gain. A = 10^(dB * 0.025).
class TrapezoidalGainFilter : public TrapezoidalFilter {
public:
    void setGain(float gainDb) { applyGainDb(gainDb); }
    void setGainLinear(float rootGain) { applyGainLinear(rootGain); }  // A, above 0

protected:
    using TrapezoidalFilter::TrapezoidalFilter;
    ~TrapezoidalGainFilter() = default;
};
