// The sum of two inputs: an input has one source, so that mixing needs a unit.
#pragma once

#include <string>

#include "core/DspUnit/DspUnit.h"

class DU_Sum2 final : public DspUnit {
public:
    // blockLength in samples.
    DU_Sum2(std::string tarvekId, int blockLength);

    void reset() override {}
    void process() override;
    void init(DspArchive&) override {}
    void getArchive(DspArchive&) override {}
};
