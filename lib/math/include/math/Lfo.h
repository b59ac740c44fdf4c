// The low-frequency oscillators of the modulation effects.
//
//   value = offset + amplitude * shape(phase),   shape from -1 to 1
//
// A frequency is limited to 0.001 Hz from below and to half the sample rate from above. A block of ticks
// gives what as many single ticks give, within float rounding.
//
// Threads: all of it on the thread that ticks; frequencies come from ramps, not from control threads.
#pragma once

class Lfo {
public:
    virtual ~Lfo() = default;

    // One sample further.
    virtual float tick() = 0;
    // The next count ticks.
    virtual void tick(float* out, int count) = 0;
    virtual void setFrequency(float hz) = 0;
    // A phase offset in cycles, up to a million. Calls move the phase by the difference to the call before,
    // so that a modulating signal can be fed in without a jump.
    virtual void setPhase(float cycles) = 0;
    virtual void setAmplitude(float amplitude) { amplitude_ = amplitude; }
    virtual void setOffset(float offset) { offset_ = offset; }
    // Back to the start of a cycle.
    virtual void reset() {}

    float frequency() const { return frequency_; }
    float amplitude() const { return amplitude_; }
    float offset() const { return offset_; }

protected:
    Lfo(float frequencyHz, float sampleRateHz)
        : frequency_(limited(frequencyHz, sampleRateHz)), sampleRate_(sampleRateHz) {}

    static constexpr float kLowestHz = 0.001f;

    // A frequency that is not a number becomes the lowest.
    static float limited(float hz, float sampleRateHz) {
        if (!(hz > kLowestHz)) return kLowestHz;
        return hz < 0.5f * sampleRateHz ? hz : 0.5f * sampleRateHz;
    }

    float frequency_;
    float amplitude_ = 1.0f;
    float offset_ = 0.0f;
    const float sampleRate_;
};
