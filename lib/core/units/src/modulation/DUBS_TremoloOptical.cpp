#include "core/units/modulation/DUBS_TremoloOptical.h"

#include <utility>

DUBS_TremoloOptical::DUBS_TremoloOptical(std::string tarvekId, int blockLength, float sampleRate)
    : ControlledUnit(std::move(tarvekId), blockLength, sampleRate, "DUBS_TremoloOptical"),
      cell_(blockLength, sampleRate, OpticalTremoloCell::kHertzRanges) {
    addControl("rate", "Rate", 6.56f, [this](float v, bool isInit) {
        cell_.setSpeed(OpticalTremoloCell::kHertzRanges.knobOf(v), isInit);
    });
    addControl("level", "Level", 0.86f, [this](float v, bool isInit) { cell_.setIntensity(v, isInit); });
}

void DUBS_TremoloOptical::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    cell_.process(inLeft, inRight, outLeft, outRight);
}
