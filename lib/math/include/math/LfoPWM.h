// A square of given duty: 1 while the counter is at or below duty * period, -1 above.
#pragma once

#include "math/CounterLfo.h"

class LfoPWM : public CounterLfo {
public:
    // Starts with a duty of one half.
    LfoPWM(float frequencyHz, float sampleRateHz);

    float tick() override;
    void tick(float* out, int count) override;
    // 0 to 1, limited to that.
    void setDuty(float duty);

private:
    void design() override;

    float duty_ = 0.5f;
    double highCount_ = 0.0;
};
