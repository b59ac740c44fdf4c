#include "proj/models/audio/InputRangeCombiner.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float kAttackSeconds = 0.00015915495f;  // a corner of 1000 Hz
constexpr float kReleaseSeconds = 0.15915494f;    // a corner of 1 Hz
constexpr float kGainCornerHz = 100.0f;
constexpr float kUpThreshold = 0.5f;
constexpr float kDownThreshold = 0.25f;
constexpr float kScale = 1.0f;
constexpr float kTwoPi = 6.2831855f;

float stepCoefficient(float seconds, float sampleRateHz) {
    return 1.0f - std::exp(-1.0f / (sampleRateHz * seconds));
}

}  // namespace

InputRangeCombiner::InputRangeCombiner(float sampleRateHz, float deltaDb)
    : ratio_(std::pow(10.0f, -0.05f * deltaDb)),
      attack_(stepCoefficient(kAttackSeconds, sampleRateHz)),
      release_(stepCoefficient(kReleaseSeconds, sampleRateHz)),
      gainPole_(std::exp(-kTwoPi * kGainCornerHz / sampleRateHz)) {}

float InputRangeCombiner::process(float sensitive, float robust, bool& isLoud) {
    envelope_ = followEnvelope(std::abs(sensitive) * kScale);
    gain_ = rangeTarget(isLoud) * (1.0f - gainPole_) + gain_ * gainPole_;
    return robust * gain_ + (sensitive * ratio_) * (1.0f - gain_);
}

float InputRangeCombiner::followEnvelope(float level) {
    const float attacked = envelope_ + (level - envelope_) * attack_;
    return attacked < level ? attacked : envelope_ + (level - envelope_) * release_;
}

float InputRangeCombiner::rangeTarget(bool& isLoud) const {
    const float level = std::min(envelope_, 1.0f);
    isLoud = isLoud ? level > kDownThreshold : level >= kUpThreshold;
    return isLoud ? 1.0f : 0.0f;
}
