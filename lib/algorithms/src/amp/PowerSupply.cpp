#include "algorithms/amp/PowerSupply.h"

#include <algorithm>
#include <cmath>

#include "SmoothingCoefficient.h"

namespace {

void shape(PowerSupply::Design& design) {
    design.knee = 0.001f + design.threshold * 0.7069458f;
    design.floor = design.depth * -0.88789f + 0.9990011f;
    design.norm = 1.0f / (design.depth * -0.88789f + 1.999001f);
    const float b = 2.001f + design.depth * 7.999f;
    const float t = design.knee;
    design.curve = (t * t + 1.0f - b - 2.0f * t) / (b * t * t - 2.0f * b * t);
}

PowerSupply::Design makeDesign(float attack, float release, float threshold, float depth, float sampleRate) {
    PowerSupply::Design design{};
    design.attackCoef = smoothingCoefficient(attack, sampleRate);
    design.releaseCoef = smoothingCoefficient(release, sampleRate);
    design.threshold = threshold;
    design.depth = depth;
    shape(design);
    return design;
}

}  // namespace

PowerSupply::PowerSupply(const float (&parameters)[4], float sampleRateHz, float outScale)
    : PowerSupply(parameters[0], parameters[1], parameters[2], parameters[3], sampleRateHz, outScale) {}

PowerSupply::PowerSupply(float attackSeconds, float releaseSeconds, float threshold, float depth,
                         float sampleRateHz, float outScale)
    : sampleRate_(sampleRateHz),
      outScale_(outScale),
      design_(makeDesign(attackSeconds, releaseSeconds, threshold, depth, sampleRateHz)) {}

float PowerSupply::tick(float x) {
    const Design& design = design_.read();
    float e = (1.0f - design.releaseCoef) * envelope_;
    const float a = std::fabs(x * inputScale_);
    if (a > e) e += (a - e) * design.attackCoef;
    envelope_ = e;
    const float ratio = std::min(design.knee / e, 1.0f);
    return (design.floor + ratio) * design.norm;
}

void PowerSupply::setAttack(float seconds) {
    Design next = design();
    next.attackCoef = smoothingCoefficient(seconds, sampleRate_);
    design_.publish(next);
}

void PowerSupply::setRelease(float seconds) {
    Design next = design();
    next.releaseCoef = smoothingCoefficient(seconds, sampleRate_);
    design_.publish(next);
}

void PowerSupply::setThreshold(float threshold) {
    Design next = design();
    next.threshold = threshold;
    shape(next);
    design_.publish(next);
}

void PowerSupply::setDepth(float depth) {
    Design next = design();
    next.depth = depth;
    shape(next);
    design_.publish(next);
}
