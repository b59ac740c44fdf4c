// One position of the cabinet switch.
#pragma once

#include <algorithm>
#include <string>

#include "proj/models/IRName.h"

namespace tvk {

struct CabsimIR {
    bool isFactory = true;       // of the factory's catalogue, else of the user's
    std::string irName = kNoIR;  // without extension
    bool isDirty = false;        // changed since the last save
    float hpf = 20.0f;           // Hz
    float lpf = 20000.0f;        // Hz
    float level = -5.0f;         // dB

    bool operator==(const CabsimIR&) const = default;
};

// What the three values of a slot may be.
struct CabsimLimits {
    static constexpr float kLowestHpfHz = 20.0f;
    static constexpr float kHighestHpfHz = 500.0f;
    static constexpr float kLowestLpfHz = 1000.0f;
    static constexpr float kHighestLpfHz = 20000.0f;
    static constexpr float kLowestLevelDb = -36.0f;
    static constexpr float kHighestLevelDb = 0.0f;

    // Infinities go to a limit; not-a-number stays.
    static constexpr float clampHpf(float hz) { return std::clamp(hz, kLowestHpfHz, kHighestHpfHz); }
    static constexpr float clampLpf(float hz) { return std::clamp(hz, kLowestLpfHz, kHighestLpfHz); }
    static constexpr float clampLevel(float db) { return std::clamp(db, kLowestLevelDb, kHighestLevelDb); }
};

}  // namespace tvk
