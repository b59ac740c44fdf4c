// Arithmetic of knob positions.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

// 0 to 1; not-a-number, as from an empty range, is 0.
inline float limitPosition(float position) {
    return std::isnan(position) ? 0.0f : std::clamp(position, 0.0f, 1.0f);
}

// The step nearest to a position, 0 to count - 1; 0 for a range of one step or none.
inline int stepOfPosition(float position, int count) {
    if (count < 2) return 0;
    const double step = 0.5 + static_cast<double>(count - 1) * static_cast<double>(limitPosition(position));
    return std::min(static_cast<int>(step), count - 1);
}

inline float positionOfStep(int step, int count) {
    return count < 2 ? 0.0f : static_cast<float>(step) / static_cast<float>(count - 1);
}

// A step moved by an encoder, held at both ends.
inline int moveStep(int step, int ticks, int count) {
    const auto moved = static_cast<std::int64_t>(step) + ticks;
    return static_cast<int>(std::clamp<std::int64_t>(moved, 0, std::max(count, 1) - 1));
}
