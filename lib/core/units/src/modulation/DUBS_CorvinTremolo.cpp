#include "core/units/modulation/DUBS_CorvinTremolo.h"

#include <utility>

DUBS_CorvinTremolo::DUBS_CorvinTremolo(std::string tarvekId, int blockLength, float sampleRate)
    : ControlledUnit(std::move(tarvekId), blockLength, sampleRate, "DUBS_CorvinTremolo"),
      cell_(blockLength, sampleRate) {
    addControl("rate", "Rate", 0.0f, [this](float v, bool isInit) { cell_.setSpeed(v, isInit); });
    addControl("level", "Level", 0.5f, [this](float v, bool isInit) { cell_.setIntensity(v, isInit); });
}

void DUBS_CorvinTremolo::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    cell_.process(inLeft, inRight, outLeft, outRight);
}
