#include "core/units/reverb/SpringKnobs.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace spring {

float levelDb(float knob) {
    if (!(knob > 0.0f)) return -60.0f;
    return std::clamp(20.0f * std::log10(knob), -60.0f, 0.0f);
}

float cutoffHz(float knob, float lowHz, float highHz, float sampleRate) {
    const double turn = 2.0 * std::numbers::pi / sampleRate;
    const double low = std::exp(-turn * lowHz);
    const double high = std::exp(-turn * highHz);
    const double pole = low + (high - low) * knob;
    return static_cast<float>(-std::log(pole) / turn);
}

float lerp(float knob, float low, float high) {
    return low + (high - low) * knob;
}

}  // namespace spring
