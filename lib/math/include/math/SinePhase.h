// The phase of a sine oscillator as a 32-bit fraction of a cycle, -pi to pi.
//
// Wrapping is the integer's own, so nothing drifts, and n steps at once are exactly n single steps: that is
// what lets a block be computed side by side. A step is 1e-5 Hz at 44100 Hz.
#pragma once

#include <cmath>
#include <cstdint>

class SinePhase {
public:
    void setFrequency(float hz, float sampleRateHz) {
        constexpr double kCycle = 4294967296.0;
        increment_ = static_cast<uint32_t>(std::llround(kCycle * hz / sampleRateHz));
    }

    // Moves the phase by the difference to the last offset. cycles: as for fromCycles.
    void setOffset(float cycles) {
        const uint32_t offset = fromCycles(cycles);
        phase_ += offset - lastOffset_;
        lastOffset_ = offset;
    }

    // To the offset set last.
    void reset() { phase_ = lastOffset_; }

    uint32_t next() { return phase_ += increment_; }
    void skip(int count) { phase_ += increment_ * static_cast<uint32_t>(count); }

    uint32_t phase() const { return phase_; }
    uint32_t increment() const { return increment_; }
    uint32_t lastOffset() const { return lastOffset_; }

    static float radians(uint32_t phase) {
        constexpr float kScale = 1.4629180792671596e-9f;  // 2 pi / 2^32
        return static_cast<float>(static_cast<int32_t>(phase)) * kScale;
    }

    // cycles: up to a million of either sign. The way over a quarter of the integer's range keeps half a
    // cycle within it, that over a conversion keeps a loop of these in vectors.
    static uint32_t fromCycles(float cycles) {
        const int32_t nearest = static_cast<int32_t>(cycles + std::copysign(0.5f, cycles));
        const float fraction = cycles - static_cast<float>(nearest);
        return static_cast<uint32_t>(static_cast<int32_t>(fraction * 1073741824.0f)) << 2;
    }

private:
    uint32_t phase_ = 0;
    uint32_t increment_ = 0;
    uint32_t lastOffset_ = 0;
};
