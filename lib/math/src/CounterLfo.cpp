#include "math/CounterLfo.h"

CounterLfo::CounterLfo(float frequencyHz, float sampleRateHz, Keeps keeps)
    : Lfo(frequencyHz, sampleRateHz), keeps_(keeps) {
    takePeriod();
}

void CounterLfo::setFrequency(float hz) {
    frequency_ = limited(hz, sampleRate_);
    takePeriod();
    design();
}

void CounterLfo::takePeriod() {
    const double samples = static_cast<double>(sampleRate_) / frequency_;
    if (keeps_ == Keeps::Count)
        counter_.setPeriodLocked(samples);
    else
        counter_.setPeriod(samples);
}
