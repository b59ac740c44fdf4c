// A square of given duty: 1 while the counter is at or below duty * period, -1 above.
#pragma once

#include "math/CounterPhase.h"
#include "math/Lfo.h"

class LfoPWM : public Lfo {
public:
    // Starts with a duty of one half.
    LfoPWM(float frequencyHz, float sampleRateHz);

    float tick() override;
    void tick(float* out, int count) override;
    void setFrequency(float hz) override;
    void setPhase(float cycles) override { counter_.setOffset(cycles); }
    void reset() override { counter_.reset(); }
    // 0 to 1, limited to that.
    void setDuty(float duty);

private:
    CounterPhase counter_;
    float duty_ = 0.5f;
    double highCount_ = 0.0;
};
