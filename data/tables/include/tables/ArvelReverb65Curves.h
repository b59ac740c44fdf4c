// The valve curves of the two-channel reverb amp, and the output soft clip. tools/data/valve_curves.py.
#pragma once

#include "tables/ValveCurve.h"

namespace tables {

extern const ValveCurve kArvelReverb65NormalStage1;
extern const ValveCurve kArvelReverb65NormalStage2;
extern const ValveCurve kArvelReverb65VibratoStage1;
extern const ValveCurve kArvelReverb65VibratoStage2;
extern const ValveCurve kArvelReverb65VibratoStage3;
extern const ValveCurve kArvelReverb65PhaseInverterA;
extern const ValveCurve kArvelReverb65PhaseInverterB;
extern const ValveCurve kArvelReverb65OutputValveA;
extern const ValveCurve kArvelReverb65OutputValveB;

// Odd, slope 1 through +-0.75, flat at +-1.
extern const ValveCurve kOutputSoftClip;

}  // namespace tables
