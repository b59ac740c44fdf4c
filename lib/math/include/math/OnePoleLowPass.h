// A one-pole low-pass.
//
//   y <- (1 - p) x + p y,   p = exp(-2 pi freqHz / sampleRate),   y = 0 at the start
#pragma once

#include <atomic>
#include <cmath>

#include "math/OnePoleScan.h"

class OnePoleLowPass {
public:
    // freqHz: the corner, above 0. sampleRate: Hz.
    OnePoleLowPass(float freqHz, float sampleRate) : sampleRate_(sampleRate) { setFrequency(freqHz); }

    // Control side; the state stays.
    void setFrequency(float freqHz) {
        pole_.store(static_cast<float>(std::exp(-6.283185307179586 * freqHz / sampleRate_)),
                    std::memory_order_relaxed);
    }
    float pole() const { return pole_.load(std::memory_order_relaxed); }

    // n samples in place. Audio thread.
    void process(float* buffer, int n) {
        const OnePoleScan scan(pole());
        const float gain = 1.0f - scan.pole();
        float y = lastOutput_;
        int i = 0;
        for (; i + 4 <= n; i += 4) {
            const OnePoleScan::Lanes lanes = scan.step(gain * OnePoleScan::load(buffer + i), y);
            OnePoleScan::store(buffer + i, lanes);
            y = lanes[3];
        }
        for (; i < n; ++i)
            buffer[i] = y = gain * buffer[i] + scan.pole() * y;
        lastOutput_ = y;
    }

    // Back to silence.
    void reset() { lastOutput_ = 0.0f; }

private:
    const double sampleRate_;
    std::atomic<float> pole_{0.0f};
    float lastOutput_ = 0.0f;
};
