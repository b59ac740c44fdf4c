#include "core/units/utility/DUBS_Passthru.h"

#include <algorithm>
#include <utility>

DUBS_Passthru::DUBS_Passthru(std::string tarvekId, int blockLength, float sampleRate)
    : DspUnitBypassStereo(std::move(tarvekId), blockLength, sampleRate) {}

void DUBS_Passthru::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    if (outLeft != inLeft) std::copy_n(inLeft, getBlockLength(), outLeft);
    if (outRight != inRight) std::copy_n(inRight, getBlockLength(), outRight);
}
