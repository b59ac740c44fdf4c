// The time of a delay unit: a target in seconds, and a glide towards it in samples.
//
//   target = min(seconds, maxSeconds) * sampleRate
//   y <- y + (target - y) (1 - p),   p = exp(-1 / (glideSeconds sampleRate))
//
// A load jumps; a live change glides and so bends the pitch, as a tape echo does. The glide is OnePoleRamp's
// law in double precision: at a hundred thousand samples a float would move in steps that can be heard, and
// stop ten samples short.
//
// Threads: setDelayTime and getDelayTime on control threads, tick on the audio thread; each word is a relaxed
// atomic.
#pragma once

#include <atomic>

class DelayTimeControl {
public:
    // Starts at 0 seconds.
    DelayTimeControl(float maxSeconds, float glideSeconds, float sampleRateHz);

    // seconds: 0 to the maximum; above it is an error in the log and the maximum. which = 1 also jumps there.
    void setDelayTime(int which, float seconds);
    // The target, samples / sampleRate.
    float getDelayTime() const;

    // One sample further; the delay in samples.
    double tick() {
        const double y = current_.load(std::memory_order_relaxed);
        const double next = y + (target_.load(std::memory_order_relaxed) - y) * step_;
        current_.store(next, std::memory_order_relaxed);
        return next;
    }

    int maxDelaySamples() const;

private:
    const double sampleRateHz_;
    const double maxSamples_;
    const double step_;
    std::atomic<double> target_{0.0};
    std::atomic<double> current_{0.0};
};
