// A control that is smoothed once a block and runs straight within it.
//
//   y <- y + a (target - y) a block,   a = 1 - exp(-N / (tc fs))
//
// tc is the time constant in seconds, N the block length, fs the sample rate in Hz. Against OnePoleRamp it
// costs one step a block instead of one a sample, and the straight line goes into vector code.
//
// Threads: setTarget and snap from any control thread, next from the audio thread. Both words are relaxed
// atomics; a snap that meets next may be lost, which only makes the value glide.
#pragma once

#include <atomic>
#include <cmath>

class BlockRamp {
public:
    // The values of one block: start + step * (n + 1) at sample n.
    struct Line {
        float start;
        float step;
        float at(int n) const { return start + step * static_cast<float>(n + 1); }
    };

    BlockRamp(float timeConstantSeconds, float sampleRateHz, int blockLength)
        : share_(1.0f - std::exp(-static_cast<float>(blockLength) / (timeConstantSeconds * sampleRateHz))),
          perSample_(1.0f / static_cast<float>(blockLength)) {}

    // One block further.
    Line next() {
        const float start = y_.load(std::memory_order_relaxed);
        const float end = start + share_ * (target() - start);
        y_.store(end, std::memory_order_relaxed);
        return {start, (end - start) * perSample_};
    }

    // One block further, as the value at its end.
    float nextValue() {
        next();
        return current();
    }

    void setTarget(float value) { target_.store(value, std::memory_order_relaxed); }

    // At once there, and stays.
    void snap(float value) {
        setTarget(value);
        y_.store(value, std::memory_order_relaxed);
    }
    void snapToTarget() { snap(target()); }

    // With init the value is there at once.
    void set(float value, bool init) { init ? snap(value) : setTarget(value); }

    float target() const { return target_.load(std::memory_order_relaxed); }
    float current() const { return y_.load(std::memory_order_relaxed); }

private:
    const float share_;
    const float perSample_;
    std::atomic<float> target_{0.0f};
    std::atomic<float> y_{0.0f};
};
