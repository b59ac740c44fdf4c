#include "core/units/modulation/DUBS_VintageTremolo.h"

#include <utility>

DUBS_VintageTremolo::DUBS_VintageTremolo(std::string tarvekId, int blockLength, float sampleRate)
    : TempoUnit(std::move(tarvekId), blockLength, sampleRate, "DUBS_VintageTremolo"),
      tremolo_(blockLength, sampleRate) {
    addControl("level", "Level", 0.86f, [this](float v, bool isInit) { tremolo_.setLevel(v, isInit); });
    addRateControl("rate", "Rate", 7.21f, [this](float hz, bool isInit) { tremolo_.setRate(hz, isInit); });
    addControl("duty", "Duty", 0.5f, [this](float v, bool isInit) { tremolo_.setDuty(v, isInit); });
    addControl("attack", "Attack", 0.96f, [this](float v, bool) { tremolo_.setAttack(v); });
    addControl("release", "Release", 0.94f, [this](float v, bool) { tremolo_.setRelease(v); });
}

void DUBS_VintageTremolo::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    tremolo_.process(inLeft, inRight, outLeft, outRight);
}
