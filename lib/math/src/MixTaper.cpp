#include "math/MixTaper.h"

#include <cmath>

void MNTaper::calc(float& dryGain, float& wetGain, float mix) const {
    wetGain = gain(mix);
    dryGain = gain(1.0f - mix);
}

float MNTaper::gain(float x) const {
    return x >= limit_ ? 1.0f : taper_.calc(x * scale_);
}

void EqualPowerMixTaper::calc(float& dryGain, float& wetGain, float mix) const {
    dryGain = std::sqrt((1.0f - (2.0f * mix - 1.0f)) * 0.5f);
    wetGain = std::sqrt((2.0f * mix) * 0.5f);
}
