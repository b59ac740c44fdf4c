// The position of an oscillator that counts samples: 0 to period, by 1 a sample, wrapped by subtraction.
//
// Counted in double precision: a float would stand still after 2^24 samples, which the lowest rates reach.
#pragma once

#include <cmath>

class CounterPhase {
public:
    // A new period keeps the place in the cycle.
    void setPeriod(double samples) {
        counter_ *= samples / period_;
        period_ = samples;
        wrap();
    }

    // A new period keeps the count, so that the cycle stays locked to the samples since the reset.
    void setPeriodLocked(double samples) {
        period_ = samples;
        wrap();
    }

    // Moves the counter by the difference to the last offset. cycles: finite.
    void setOffset(float cycles) {
        counter_ += (static_cast<double>(cycles) - lastOffset_) * period_;
        lastOffset_ = cycles;
        wrap();
    }

    // To the start of a cycle; the offset starts anew from there.
    void reset() {
        counter_ = 0.0;
        lastOffset_ = 0.0;
    }

    double next() {
        counter_ += 1.0;
        if (counter_ >= period_) counter_ -= period_;
        return counter_;
    }

    double period() const { return period_; }

    // A triangle at the counter: -1 at 0, 1 at half the period.
    static float triangle(double counter, double halfPeriod) {
        return static_cast<float>(2.0 * (1.0 - std::fabs(halfPeriod - counter) / halfPeriod) - 1.0);
    }

private:
    void wrap() { counter_ -= period_ * std::floor(counter_ / period_); }

    double counter_ = 0.0;
    double period_ = 1.0;
    double lastOffset_ = 0.0;
};
