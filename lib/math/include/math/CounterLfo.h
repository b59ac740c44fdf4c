// The base of the oscillators that count samples: where the cycle stands, and how it follows frequency, phase
// and reset. A shape derives from it and says what of its own depends on the period.
#pragma once

#include "math/CounterPhase.h"
#include "math/Lfo.h"

class CounterLfo : public Lfo {
public:
    void setFrequency(float hz) override;
    void setPhase(float cycles) override { counter_.setOffset(cycles); }
    void reset() override { counter_.reset(); }

protected:
    // What a change of frequency leaves as it is: the place in the cycle, or the samples since the reset.
    enum class Keeps { Place, Count };

    // The derived constructor calls its design.
    CounterLfo(float frequencyHz, float sampleRateHz, Keeps keeps = Keeps::Place);

    // The constants of the shape, after counter_ has taken a new period.
    virtual void design() = 0;

    CounterPhase counter_;

private:
    void takePeriod();

    const Keeps keeps_;
};
