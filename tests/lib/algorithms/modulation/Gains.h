// What a tremolo does to a constant: its gain, sample by sample.
#pragma once

#include <vector>

constexpr int kBlock = 32;
constexpr float kRate = 44100.0f;

// blocks of the left output for an input of 1.
template <typename Tremolo>
std::vector<float> gainsOf(Tremolo& tremolo, int blocks) {
    std::vector<float> gains;
    for (int b = 0; b < blocks; ++b) {
        std::vector<float> left(kBlock, 1.0f);
        std::vector<float> right(kBlock, 1.0f);
        tremolo.process(left.data(), right.data(), left.data(), right.data());
        gains.insert(gains.end(), left.begin(), left.end());
    }
    return gains;
}

// How often the values swing from below `low` to above `high`: an LFO's phase is bent so far that it crosses
// its middle three times.
inline int swingsUp(float low, float high, const std::vector<float>& values) {
    int swings = 0;
    bool wasLow = false;
    for (const float value : values) {
        if (value < low) wasLow = true;
        if (value > high && wasLow) {
            wasLow = false;
            ++swings;
        }
    }
    return swings;
}
