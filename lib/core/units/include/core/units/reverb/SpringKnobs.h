// What the knobs of the spring reverbs mean.
#pragma once

namespace spring {

// What a level knob stores when it is turned down all the way.
inline constexpr float kLevelKnobAtZero = 1e-5f;

// The dry path of every unit, dB.
inline constexpr float kDryLevelDb = -0.1f;

// 20 log10(knob), limited to -60 to 0 dB; -60 dB at or below 0.
float levelDb(float knob);

// Between two corners, in Hz, by their poles: p = exp(-2 pi f / fs), so that the knob moves the filter
// evenly.
float cutoffHz(float knob, float lowHz, float highHz, float sampleRate);

// low + (high - low) knob.
float lerp(float knob, float low, float high);

}  // namespace spring
