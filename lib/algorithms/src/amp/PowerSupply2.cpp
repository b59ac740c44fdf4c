#include "algorithms/amp/PowerSupply2.h"

#include <algorithm>
#include <cmath>

#include "SmoothingCoefficient.h"
#include "utility/Multiversion.h"

namespace {

constexpr float kShortestSeconds = 1e-5f;
constexpr float kSmallestDivisor = 1e-9f;
// Samples whose gains are computed together.
constexpr int kRun = 32;

using Design = PowerSupply2::Design;

void storeAttack(Design& design, float seconds, float sampleRate) {
    design.attack = seconds <= 0.0f ? kShortestSeconds : seconds;
    design.attackCoef = smoothingCoefficient(design.attack, sampleRate);
}

void storeRelease(Design& design, float seconds, float sampleRate) {
    design.release = seconds <= 0.0f ? kShortestSeconds : seconds;
    design.releaseCoef = smoothingCoefficient(design.release, sampleRate);
}

void storeThreshold(Design& design, float volts) {
    design.threshold = std::max(volts, 0.0f);
}

void storeRatio(Design& design, float ratio) {
    design.inverseRatio = ratio < 1.0f ? 1.0f : 1.0f / ratio;
    design.norm = 1.0f / (design.inverseRatio + 1.0f);
}

Design makeDesign(float attack, float release, float threshold, float ratio, float sampleRate) {
    Design design{};
    storeAttack(design, attack, sampleRate);
    storeRelease(design, release, sampleRate);
    storeThreshold(design, threshold);
    storeRatio(design, ratio);
    return design;
}

inline float follow(const Design& design, float envelope, float a) {
    const float difference = a - envelope;
    const float coefficient = difference > 0.0f ? design.attackCoef : design.releaseCoef;
    return envelope + difference * coefficient;
}

inline float sag(const Design& design, float envelope, float x) {
    const float divisor = std::max({design.threshold, envelope, kSmallestDivisor});
    return (design.threshold / divisor + design.inverseRatio) * (x * design.norm);
}

// The envelope is serial; the divisions behind it are not.
TARVEK_MULTIVERSION
float processRun(const Design& design, float inputScale, float envelope, float* buffer, int length) {
    float envelopes[kRun];
    for (int n = 0; n < length; ++n) {
        envelope = follow(design, envelope, std::fabs(buffer[n] * inputScale));
        envelopes[n] = envelope;
    }
    for (int n = 0; n < length; ++n)
        buffer[n] = sag(design, envelopes[n], buffer[n]);
    return envelope;
}

}  // namespace

PowerSupply2::PowerSupply2(float attackSeconds, float releaseSeconds, float thresholdVolts, float ratio,
                           float sampleRateHz, float inputScale)
    : sampleRate_(sampleRateHz),
      inputScale_(inputScale),
      design_(makeDesign(attackSeconds, releaseSeconds, thresholdVolts, ratio, sampleRateHz)) {}

float PowerSupply2::tick(float x) {
    const Design& design = design_.read();
    envelope_ = follow(design, envelope_, std::fabs(x * inputScale_));
    return sag(design, envelope_, x);
}

void PowerSupply2::process(float* buffer, int length) {
    const Design& design = design_.read();
    for (int start = 0; start < length; start += kRun) {
        envelope_ =
            processRun(design, inputScale_, envelope_, buffer + start, std::min(kRun, length - start));
    }
}

void PowerSupply2::setAttackTime(float seconds) {
    Design next = design();
    storeAttack(next, seconds, sampleRate_);
    design_.publish(next);
}

void PowerSupply2::setReleaseTime(float seconds) {
    Design next = design();
    storeRelease(next, seconds, sampleRate_);
    design_.publish(next);
}

void PowerSupply2::setThreshold(float volts) {
    Design next = design();
    storeThreshold(next, volts);
    design_.publish(next);
}

void PowerSupply2::setRatio(float ratio) {
    Design next = design();
    storeRatio(next, ratio);
    design_.publish(next);
}
