#include "core/units/modulation/DUBS_TremoloHarmonicStereo.h"

#include <utility>

DUBS_TremoloHarmonicStereo::DUBS_TremoloHarmonicStereo(std::string tarvekId, int blockLength,
                                                       float sampleRate)
    : ControlledUnit(std::move(tarvekId), blockLength, sampleRate, "DUBS_TremoloHarmonicStereo"),
      tremolo_(blockLength, sampleRate) {
    addControl("speed", "Speed", 4.05f, [this](float v, bool isInit) { tremolo_.setSpeed(v, isInit); });
    addControl("intensity", "Intensity", 0.78f,
               [this](float v, bool isInit) { tremolo_.setIntensity(v, isInit); });
    addControl("shape", "Shape", 0.44f, [this](float v, bool isInit) { tremolo_.setShape(v, isInit); });
    addControl("mode", "Mode", std::string("6G4A"),
               [this](const std::string& mode, bool) { tremolo_.setMode(mode); });
}

void DUBS_TremoloHarmonicStereo::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    tremolo_.process(inLeft, inRight, outLeft, outRight);
}
