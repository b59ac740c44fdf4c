// Noise that is the same in every run.
#pragma once

#include <random>
#include <vector>

// Evenly spread between -peak and peak.
inline std::vector<float> whiteNoise(int count, unsigned seed, float peak = 1.0f) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> uniform(-peak, peak);
    std::vector<float> samples(static_cast<std::size_t>(count));
    for (float& x : samples)
        x = uniform(random);
    return samples;
}
