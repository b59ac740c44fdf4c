// y[n] = v[n] + p y[n-1], four samples a step, in the lanes of one vector.
//
// A serial one-pole costs the latency of a multiplication and an addition for every sample. Here the sums
// inside a step do not wait for the step before; only p^4 y[n-1] does. The result differs from the serial
// form by float rounding.
#pragma once

#include <cstring>

class OnePoleScan {
public:
    using Lanes = float __attribute__((vector_size(16)));

    explicit OnePoleScan(float pole) : p1_(pole), p2_(pole * pole), powers_{p1_, p2_, p2_ * p1_, p2_ * p2_} {}

    float pole() const { return p1_; }

    // v[n..n+3] to y[n..n+3]; last is y[n-1].
    Lanes step(Lanes v, float last) const {
        constexpr Lanes zero{};
        v += p1_ * __builtin_shufflevector(zero, v, 0, 4, 5, 6);
        v += p2_ * __builtin_shufflevector(zero, v, 0, 0, 4, 5);
        return v + powers_ * last;
    }

    static Lanes load(const float* samples) {
        Lanes lanes;
        std::memcpy(&lanes, samples, sizeof lanes);
        return lanes;
    }
    static void store(float* samples, Lanes lanes) { std::memcpy(samples, &lanes, sizeof lanes); }

    // The lanes one sample late: before, then all but the last.
    static Lanes delayed(Lanes lanes, float before) {
        const Lanes first{before, 0.0f, 0.0f, 0.0f};
        return __builtin_shufflevector(first, lanes, 0, 4, 5, 6);
    }

private:
    float p1_;
    float p2_;
    Lanes powers_;
};
