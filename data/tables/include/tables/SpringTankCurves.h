// The valve curves of the spring tank: what drives it and what picks its signal up.
// tools/data/spring_tank_curves.py.
#pragma once

#include "tables/ValveCurve.h"

namespace tables {

// The driver at the tank's coil. It rises: a transformer stands behind its valves.
inline constexpr float kSpringTankDriveRange = 18.95668f;  // volts at x = 1
inline constexpr float kSpringTankDriveMin = -2.747685f;   // volts
inline constexpr float kSpringTankDriveMax = 4.608292f;
extern const ValveCurve kSpringTankDrive;

// The recovery stage behind the tank, at its plate.
inline constexpr float kSpringTankRecoveryRange = 10.0f;
inline constexpr float kSpringTankRecoveryMin = 70.13475f;
inline constexpr float kSpringTankRecoveryMax = 207.2241f;
extern const ValveCurve kSpringTankRecovery;

}  // namespace tables
