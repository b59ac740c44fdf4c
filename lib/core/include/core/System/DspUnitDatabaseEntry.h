// One unit type of the catalogue: how to build it and how it presents itself.
#pragma once

#include <memory>
#include <string>

#include "core/DspUnit/IDspUnit.h"

struct DspUnitDatabaseEntry {
    // blockLength in samples, sampleRate in Hz. May throw what the unit's constructor throws.
    using Create = std::unique_ptr<IDspUnit> (*)(const std::string& tarvekId, int blockLength,
                                                 float sampleRate);

    std::string tarvekId;
    Create create;
    // The unit definition, a JSON text: defaults and user interface of the type.
    const char* definition;
};

// The factory of a unit class that is constructed from (tarvekId, blockLength, sampleRate).
template <typename Unit>
std::unique_ptr<IDspUnit> createUnit(const std::string& tarvekId, int blockLength, float sampleRate) {
    return std::make_unique<Unit>(tarvekId, blockLength, sampleRate);
}

// The factory of a unit class whose work knows no time: constructed from (tarvekId, blockLength).
template <typename Unit>
std::unique_ptr<IDspUnit> createTimelessUnit(const std::string& tarvekId, int blockLength, float) {
    return std::make_unique<Unit>(tarvekId, blockLength);
}
