#include "core/units/modulation/DUBS_QNCorvin65Tremolo.h"

#include <utility>

DUBS_QNCorvin65Tremolo::DUBS_QNCorvin65Tremolo(std::string tarvekId, int blockLength, float sampleRate)
    : ControlledUnit(std::move(tarvekId), blockLength, sampleRate, "DUBS_QNCorvin65Tremolo"),
      cell_(blockLength, sampleRate) {
    addControl("speed", "Speed", 0.3f, [this](float v, bool isInit) { cell_.setSpeed(v, isInit); });
    addControl("intensity", "Intensity", 0.3f,
               [this](float v, bool isInit) { cell_.setIntensity(v, isInit); });
}

void DUBS_QNCorvin65Tremolo::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    cell_.process(inLeft, inRight, outLeft, outRight);
}
