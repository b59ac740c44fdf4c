#include "core/units/reverb/DUBS_Moren15Reverb.h"

#include <utility>

#include "core/units/reverb/SpringKnobs.h"

DUBS_Moren15Reverb::DUBS_Moren15Reverb(std::string tarvekId, int blockLength, float sampleRate)
    : ControlledUnit(std::move(tarvekId), blockLength, sampleRate, "DUBS_Moren15Reverb"),
      tank_(rvb::kSpringVoicing65, blockLength, sampleRate) {
    addControl("drylvl", "Dry level", 0.0f,
               [this](float level, bool isInit) { tank_.setDryLevelDb(spring::levelDb(level), isInit); });
    addControl("wetlvl", "Wet level", 1.0f,
               [this](float level, bool isInit) { tank_.setWetLevelDb(spring::levelDb(level), isInit); });
}

void DUBS_Moren15Reverb::process(float* inLeft, float* inRight, float* outLeft, float* outRight) {
    tank_.process(inLeft, inRight, outLeft, outRight, getBlockLength());
}
