// Supply sag of the newer amp models: a compressor of the output voltage with its own envelope.
//
//   a = |x inputScale|;  e <- e + (a - e) (attackCoef if a > e, else releaseCoef)
//   y = (threshold / max(threshold, e) + inverseRatio) norm x
//
// Gain 1 below the threshold (volts); far above it the gain tends to inverseRatio * norm, 1/3 at ratio 2. The
// divisor is at least 1e-9 V.
//
// Threads: tick, process and reset on the audio thread; setters on the control side, one thread at a time.
#pragma once

#include "math/PublishedRecord.h"

class PowerSupply2 {
public:
    // What the setters design, after their limits.
    struct Design {
        float attack;        // seconds; 0 and below become 1e-5
        float release;       // seconds; likewise
        float threshold;     // volts; below 0 becomes 0
        float inverseRatio;  // 1 / ratio; 1 for a ratio below 1
        float norm;          // 1 / (1 / ratio + 1); 0.5 for a ratio below 1
        float attackCoef;    // 1 - exp(-1 / (attack fs))
        float releaseCoef;   // 1 - exp(-1 / (release fs))
    };

    // Times in seconds, threshold in volts, ratio of 1 or more. inputScale multiplies ahead of the detector.
    PowerSupply2(float attackSeconds, float releaseSeconds, float thresholdVolts, float ratio,
                 float sampleRateHz, float inputScale);
    virtual ~PowerSupply2() = default;

    // Empties the envelope.
    virtual void reset() { envelope_ = 0.0f; }

    // The sample with the sag on it.
    float tick(float x);
    // tick on every sample of a buffer, in place.
    void process(float* buffer, int length);

    void setAttackTime(float seconds);
    void setReleaseTime(float seconds);
    void setThreshold(float volts);
    void setRatio(float ratio);

    // What was designed last. Control side.
    const Design& design() const { return design_.latest(); }

private:
    const float sampleRate_;
    const float inputScale_;
    PublishedRecord<Design> design_;
    float envelope_ = 0.0f;
};
