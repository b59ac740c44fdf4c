// The cabinets that the amplifiers come with: an id, the response, and the classes of cabinet and speaker.
// "None" is no row: it is what every list knows without one.
#pragma once

#include <memory>
#include <span>

#include "algorithms/cabsim/CabSimQNSBase.h"
#include "algorithms/cabsim/ICabSim.h"
#include "algorithms/cabsim/SICQNSBase.h"

struct CabinetRow {
    const char* id;
    const char* response;  // its path on the amplifier, without extension

    // Each may answer null when it cannot be made. sampleRate in Hz, blockLength in samples per call.
    std::unique_ptr<CabSimQNSBase> (*makeCabinet)(const char* response, float sampleRate);
    std::unique_ptr<SICQNSBase> (*makeCurve)(int blockLength, float sampleRate);
    std::unique_ptr<ICabSim> (*makeNetwork)(int blockLength, float sampleRate);
};

// One row for each amplifier.
std::span<const CabinetRow> cabinetTable();
