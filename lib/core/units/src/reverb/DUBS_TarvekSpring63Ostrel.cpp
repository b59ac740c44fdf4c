#include "core/units/reverb/DUBS_TarvekSpring63Ostrel.h"

#include <utility>

DUBS_TarvekSpring63Ostrel::DUBS_TarvekSpring63Ostrel(std::string tarvekId, int blockLength, float sampleRate)
    : SpringUnit(std::move(tarvekId), blockLength, sampleRate, "DUBS_TarvekSpring63Ostrel",
                 rvb::kSpringVoicing63Ostrel, {"level", 0.5f, 0.5f, 0.5f, 0.5f, 0.5f}) {}
