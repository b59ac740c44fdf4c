#include "core/units/modulation/DUBS_TremoloHarmonic.h"

#include <utility>

DUBS_TremoloHarmonic::DUBS_TremoloHarmonic(std::string tarvekId, int blockLength, float sampleRate)
    : TempoUnit(std::move(tarvekId), blockLength, sampleRate, "DUBS_TremoloHarmonic"),
      tremolo_(blockLength, sampleRate) {
    addRateControl("speed", "Speed", 4.05f, [this](float hz, bool isInit) { tremolo_.setSpeed(hz, isInit); });
    addControl("intensity", "Intensity", 0.78f,
               [this](float v, bool isInit) { tremolo_.setIntensity(v, isInit); });
    addControl("shape", "Shape", 0.44f, [this](float v, bool isInit) { tremolo_.setShape(v, isInit); });
    addControl("mode", "Mode", std::string("6G4A"),
               [this](const std::string& mode, bool) { tremolo_.setMode(mode); });
}

void DUBS_TremoloHarmonic::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    tremolo_.process(inLeft, inRight, outLeft, outRight);
}
