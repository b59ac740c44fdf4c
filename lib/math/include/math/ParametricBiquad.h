// A biquad that is set in physical units: gain, frequency and q. Each Bq* class is this with its own law.
//
// A frequency at or above half the rate is truncated to sampleRate * 0.495, with a warning. A q at or below 0
// is an error line and becomes 0.707 in the constructor, 1.0 in a setter; a rate at or below 0 is an error
// line and 44100 Hz is taken, so that the filter stays usable.
#pragma once

#include "math/Biquad.h"

template <typename T>
class ParametricBiquad : public Biquad<T> {
public:
    // Setters: control side, one thread at a time. Each designs, and publishes the coefficients whole.
    void setGainDb(T gainDb);
    void setGainLinear(T gain);  // as stored: an amplitude G, or for peaks and shelves its root A; above 0
    void setFrequency(T freqHz);
    void setQ(T q);
    void setAll(T gainDb, T freqHz, T q);

    // What is stored, after truncation and scaling.
    double gain() const { return gain_; }
    double gainDb() const;
    double w0() const { return w0_; }  // radians per sample
    double q() const { return q_; }    // for shelves the slope S, a quarter of the q that was set
    double sampleRate() const { return sampleRate_; }

protected:
    ParametricBiquad(const BiquadLaw& law, T gainDb, T freqHz, T q, T sampleRate);
    ~ParametricBiquad() = default;

private:
    void storeGainDb(T gainDb);
    void storeFrequency(T freqHz);
    void storeQ(T q, double fallback);
    void design();

    const BiquadLaw& law_;
    double gain_;
    double w0_;
    double q_;
    double sampleRate_;
};

extern template class ParametricBiquad<float>;
extern template class ParametricBiquad<double>;
