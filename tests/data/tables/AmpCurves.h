// The amp's curves with the limits that its stages are built with.
#pragma once

#include <array>

#include "Curve.h"
#include "tables/ArvelReverb65Curves.h"
#include "tables/SpringTankCurves.h"

inline const std::array<Curve, 5> kPreampCurves = {{
    {"normal stage 1", tables::kArvelReverb65NormalStage1, 10.0, 100.1697, 300.4954},
    {"normal stage 2", tables::kArvelReverb65NormalStage2, 5.0, 120.0555, 367.8339},
    {"vibrato stage 1", tables::kArvelReverb65VibratoStage1, 10.0, 100.1697, 300.4954},
    {"vibrato stage 2", tables::kArvelReverb65VibratoStage2, 5.0, 120.0555, 367.8339},
    {"vibrato stage 3", tables::kArvelReverb65VibratoStage3, 5.0, 14.91965, 222.9328},
}};

inline const Curve kInverterA{"inverter A", tables::kArvelReverb65PhaseInverterA, 10.0, 119.4794, 366.59479};
inline const Curve kInverterB{"inverter B", tables::kArvelReverb65PhaseInverterB, 10.0, 106.0296, 358.5621};
inline const Curve kOutputA{"output valve A", tables::kArvelReverb65OutputValveA, 50.0, -18.85376,
                            -0.09345604};
inline const Curve kOutputB{"output valve B", tables::kArvelReverb65OutputValveB, 50.0, 0.08957769, 18.84547};
inline const Curve kTankDrive{"tank drive", tables::kSpringTankDrive, 18.95668, -2.747685, 4.608292};
inline const Curve kTankRecovery{"tank recovery", tables::kSpringTankRecovery, 10.0, 70.13475, 207.2241};
inline const Curve kSoftClip{"soft clip", tables::kOutputSoftClip, 1.0, -1.0, 1.0};

// +1 where the curve rises.
inline double direction(const Curve& curve) {
    return curve.normalised(1.0) > curve.normalised(-1.0) ? 1.0 : -1.0;
}
