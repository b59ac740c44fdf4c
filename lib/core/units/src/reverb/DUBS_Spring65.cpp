#include "core/units/reverb/DUBS_Spring65.h"

#include <utility>

DUBS_Spring65::DUBS_Spring65(std::string tarvekId, int blockLength, float sampleRate)
    : SpringUnit(std::move(tarvekId), blockLength, sampleRate, "DUBS_Spring65", rvb::kSpringVoicing65,
                 {"wetLvl", 0.5f, 0.54444f, 0.28889f, 1.0f, 0.5f}) {}
