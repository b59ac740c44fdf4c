// A mix of two signals whose weights run after their targets.
//
//   current <- current + (target - current) k,   k = 1 - exp(-2 pi / (t fs))
//   out = current2 second + current1 first
//
// t is in seconds, fs in Hz. With the 2 pi in k, t is the period of the corner frequency and not the time
// constant: OnePoleRamp of the same t is 2 pi times as slow.
//
// Threads: setters from control threads, process from the audio thread.
#pragma once

#include <atomic>

namespace rvb {

class SpringRamp {
public:
    // Starts at the two weights.
    SpringRamp(float first, float second, float seconds, float sampleRate);

    // A time at or below 0 jumps.
    void setTime(float seconds, float sampleRate);
    // isInit: the next block starts at the target.
    void setFirst(float target, bool isInit) {
        target1_.store(target, std::memory_order_relaxed);
        if (isInit) isSnapping1_.store(true, std::memory_order_release);
    }
    void setSecond(float target, bool isInit) {
        target2_.store(target, std::memory_order_relaxed);
        if (isInit) isSnapping2_.store(true, std::memory_order_release);
    }

    float firstTarget() const { return target1_.load(std::memory_order_relaxed); }
    float secondTarget() const { return target2_.load(std::memory_order_relaxed); }

    // n samples; out may be either input.
    void process(const float* first, const float* second, float* out, int n);

private:
    std::atomic<float> target1_;
    std::atomic<float> target2_;
    std::atomic<float> step_{1.0f};
    std::atomic<bool> isSnapping1_{false};
    std::atomic<bool> isSnapping2_{false};
    // The audio thread's.
    float current1_;
    float current2_;
};

}  // namespace rvb
