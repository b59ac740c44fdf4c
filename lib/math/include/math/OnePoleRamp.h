// The click-free gain of every unit: a one-pole low-pass that runs after its target.
//
//   y <- target * a + p * y,   p = exp(-2 pi f / fs),   a = 1 - p,   f = 0.15915494 / tc
//
// tc is the time constant in seconds, fs the sample rate in Hz. All work is in 32-bit float, so a ramp
// stalls a rounding error short of its target (about 1e-6 of it for short constants, 1e-4 for long ones).
//
// Threads: setTarget and snap from any control thread, tick and process from the audio thread. Each field is
// one relaxed atomic word; a snap that meets a tick in the same sample may be lost, which only lengthens the
// fade.
#pragma once

#include <atomic>
#include <cmath>

class OnePoleRamp {
public:
    OnePoleRamp(float timeConstantSeconds, float sampleRateHz)
        : p_(std::exp(-6.2831855f * (0.15915494f / timeConstantSeconds) / sampleRateHz)), a_(1.0f - p_) {}

    // One sample further towards the target.
    float tick() {
        const float y = p_ * y_.load(std::memory_order_relaxed) + target() * a_;
        y_.store(y, std::memory_order_relaxed);
        current_.store(y, std::memory_order_relaxed);
        return y;
    }

    // The next n values of tick, for a target that stays. n is 1 or more.
    void process(float* out, int n) {
        const float step = target() * a_;
        float y = y_.load(std::memory_order_relaxed);
        for (int i = 0; i < n; ++i) {
            y = p_ * y + step;
            out[i] = y;
        }
        y_.store(y, std::memory_order_relaxed);
        current_.store(y, std::memory_order_relaxed);
    }

    // True when a further tick gives the value that the last one gave, to the bit.
    bool isAtRest() const {
        const float y = y_.load(std::memory_order_relaxed);
        return p_ * y + target() * a_ == y && current() == y;
    }

    // Where the ramp goes; the value moves with the next ticks.
    void setTarget(float value) { target_.store(value, std::memory_order_relaxed); }

    // Puts the state at a value and leaves the target as it is.
    void snap(float value) { y_.store(value, std::memory_order_relaxed); }

    float target() const { return target_.load(std::memory_order_relaxed); }

    // The last output.
    float current() const { return current_.load(std::memory_order_relaxed); }

private:
    std::atomic<float> target_{0.0f};
    std::atomic<float> current_{0.0f};
    const float p_;
    const float a_;
    std::atomic<float> y_{0.0f};
};
