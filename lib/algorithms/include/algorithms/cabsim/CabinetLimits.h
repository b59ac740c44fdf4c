// The range of a cabinet's controls. A value outside is limited, not refused.
#pragma once

#include <algorithm>

namespace cabinet {

constexpr float limitHpfHz(float hz) {
    return std::clamp(hz, 20.0f, 500.0f);
}

constexpr float limitLpfHz(float hz) {
    return std::clamp(hz, 1000.0f, 20000.0f);
}

constexpr float limitLevelDb(float db) {
    return std::clamp(db, -36.0f, 0.0f);
}

}  // namespace cabinet
