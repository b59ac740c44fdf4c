// Supply sag of the older amp models: a factor for each sample, from an envelope of the signal.
//
//   e <- (1 - releaseCoef) e;  a = |x inputScale|;  if a > e: e <- e + (a - e) attackCoef
//   factor = (floor + min(knee / e, 1)) norm
//
// About 1 while the signal is small, floor * norm under a large one. The supply recharges all the time.
//
// Threads: tick, apply and reset on the audio thread; setters on the control side, one thread at a time.
#pragma once

#include "math/PublishedRecord.h"

class PowerSupply {
public:
    // What the setters design; times in seconds, coefficients per sample.
    struct Design {
        float attackCoef;   // 1 - exp(-1 / (attack fs))
        float releaseCoef;  // 1 - exp(-1 / (release fs))
        float threshold;    // 0 to 1, as given
        float depth;        // 0 to 1, as given
        float knee;         // 0.001 + 0.7069458 threshold
        float floor;        // 0.9990011 - 0.88789 depth
        float norm;         // 1 / (1.999001 - 0.88789 depth)
        float curve;        // for derived supplies: (T^2 + 1 - B - 2 T) / (B T^2 - 2 B T),
                            // B = 2.001 + 7.999 depth, T = knee
    };

    // parameters: attack and release in seconds, threshold and depth 0 to 1. outScale multiplies in apply.
    PowerSupply(const float (&parameters)[4], float sampleRateHz, float outScale);
    PowerSupply(float attackSeconds, float releaseSeconds, float threshold, float depth, float sampleRateHz,
                float outScale);
    virtual ~PowerSupply() = default;

    // Empties the envelope.
    virtual void reset() { envelope_ = 0.0f; }

    // The sag factor for this sample.
    float tick(float x);
    float apply(float x, float factor) const { return x * factor * outScale_; }

    void setAttack(float seconds);
    void setRelease(float seconds);
    void setThreshold(float threshold);
    void setDepth(float depth);

    // What was designed last. Control side.
    const Design& design() const { return design_.latest(); }

private:
    const float inputScale_ = 1.0f;
    float envelope_ = 0.0f;
    const float sampleRate_;
    const float outScale_;
    PublishedRecord<Design> design_;
};
