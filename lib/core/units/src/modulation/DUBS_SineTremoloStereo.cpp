#include "core/units/modulation/DUBS_SineTremoloStereo.h"

#include <utility>

DUBS_SineTremoloStereo::DUBS_SineTremoloStereo(std::string tarvekId, int blockLength, float sampleRate)
    : ControlledUnit(std::move(tarvekId), blockLength, sampleRate, "DUBS_SineTremoloStereo"),
      tremolo_(blockLength, sampleRate) {
    addControl("rate", "Rate", 6.56f, [this](float v, bool isInit) { tremolo_.setRate(v, isInit); });
    addControl("level", "Level", 0.86f, [this](float v, bool isInit) { tremolo_.setLevel(v, isInit); });
    addControl("duty", "Duty", 0.5f, [this](float v, bool isInit) { tremolo_.setDuty(v, isInit); });
    addControl("dist", "Dist", 0.0f, [this](float v, bool isInit) { tremolo_.setClip(v, isInit); });
    addControl("shape", "Shape", 0.0f, [this](float v, bool isInit) { tremolo_.setDist(v, isInit); });
}

void DUBS_SineTremoloStereo::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    tremolo_.process(inLeft, inRight, outLeft, outRight);
}
