#include "core/units/modulation/DUBS_SineTremolo.h"

#include <utility>

DUBS_SineTremolo::DUBS_SineTremolo(std::string tarvekId, int blockLength, float sampleRate)
    : TempoUnit(std::move(tarvekId), blockLength, sampleRate, "DUBS_SineTremolo"),
      tremolo_(blockLength, sampleRate) {
    addControl("level", "Level", 0.86f, [this](float v, bool isInit) { tremolo_.setLevel(v, isInit); });
    addRateControl("rate", "Rate", 6.56f, [this](float hz, bool isInit) { tremolo_.setRate(hz, isInit); });
    addControl("duty", "Duty", 0.5f, [this](float v, bool isInit) { tremolo_.setDuty(v, isInit); });
    addControl("dist", "Dist", 0.0f, [this](float v, bool isInit) { tremolo_.setClip(v, isInit); });
    addControl("shape", "Shape", 0.0f, [this](float v, bool isInit) { tremolo_.setDist(v, isInit); });
}

void DUBS_SineTremolo::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    tremolo_.process(inLeft, inRight, outLeft, outRight);
}
