#include "math/TrapezoidalFilter.h"

#include <cmath>

#include "FilterArguments.h"

TrapezoidalFilter::TrapezoidalFilter(const TrapezoidalLaw& law, float gainDb, float freqHz, float q,
                                     float sampleRate)
    : law_(law), sampleRate_(static_cast<float>(checkedSampleRate(law.name, sampleRate))) {
    storeGainDb(gainDb);
    storeFrequency(freqHz);
    q_ = static_cast<float>(checkedQ(law.name, q, 0.707));
    design();
}

void TrapezoidalFilter::process(float* buffer, int n) {
    const TrapezoidalCoefficients c = coefficients_.read();
    float ic1 = state_.ic1;
    float ic2 = state_.ic2;
    for (int i = 0; i < n; ++i) {
        const float x = buffer[i];
        const float t3 = x - ic2;
        const float t1 = c.a1 * ic1 + c.a2 * t3;
        const float t2 = ic2 + c.a2 * ic1 + c.a3 * t3;
        ic1 = 2.0f * t1 - ic1;
        ic2 = 2.0f * t2 - ic2;
        buffer[i] = c.m0 * x + c.m1 * t1 + c.m2 * t2;
    }
    state_ = {ic1, ic2};
}

void TrapezoidalFilter::setFrequency(float freqHz) {
    storeFrequency(freqHz);
    design();
}

void TrapezoidalFilter::setQ(float q) {
    q_ = static_cast<float>(checkedQ(law_.name, q, 1.0));
    design();
}

void TrapezoidalFilter::setAll(float gainDb, float freqHz, float q) {
    storeGainDb(gainDb);
    storeFrequency(freqHz);
    setQ(q);
}

void TrapezoidalFilter::applyGainDb(float gainDb) {
    storeGainDb(gainDb);
    design();
}

void TrapezoidalFilter::applyGainLinear(float rootGain) {
    rootGain_ = rootGain;
    design();
}

void TrapezoidalFilter::storeGainDb(float gainDb) {
    rootGain_ = static_cast<float>(std::pow(10.0, gainDb * 0.025));
}

void TrapezoidalFilter::storeFrequency(float freqHz) {
    const float limit = static_cast<float>(sampleRate_ * 0.495);
    freqHz_ = freqHz < limit ? freqHz : limit;
}

void TrapezoidalFilter::design() {
    coefficients_.publish(law_.design(rootGain_, freqHz_, q_, sampleRate_));
}
