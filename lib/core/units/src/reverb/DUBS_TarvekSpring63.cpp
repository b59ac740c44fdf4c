#include "core/units/reverb/DUBS_TarvekSpring63.h"

#include <utility>

DUBS_TarvekSpring63::DUBS_TarvekSpring63(std::string tarvekId, int blockLength, float sampleRate)
    : SpringUnit(std::move(tarvekId), blockLength, sampleRate, "DUBS_TarvekSpring63", rvb::kSpringVoicing63,
                 {"level", 0.5f, 0.5f, 0.5f, 0.5f, 0.5f}) {}
