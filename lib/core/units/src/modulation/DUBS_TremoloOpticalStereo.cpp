#include "core/units/modulation/DUBS_TremoloOpticalStereo.h"

#include <utility>

DUBS_TremoloOpticalStereo::DUBS_TremoloOpticalStereo(std::string tarvekId, int blockLength, float sampleRate)
    : ControlledUnit(std::move(tarvekId), blockLength, sampleRate, "DUBS_TremoloOpticalStereo"),
      cell_(blockLength, sampleRate, OpticalTremoloCell::kHertzRanges) {
    addControl("rate", "Rate", 6.56f, [this](float v, bool isInit) {
        cell_.setSpeed(OpticalTremoloCell::kHertzRanges.knobOf(v), isInit);
    });
    addControl("level", "Level", 0.86f, [this](float v, bool isInit) { cell_.setIntensity(v, isInit); });
}

void DUBS_TremoloOpticalStereo::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    cell_.processStereo(inLeft, inRight, outLeft, outRight);
}
