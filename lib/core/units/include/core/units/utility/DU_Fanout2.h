// One input to two outputs.
#pragma once

#include <string>

#include "core/DspUnit/DspUnit.h"

class DU_Fanout2 final : public DspUnit {
public:
    // blockLength in samples.
    DU_Fanout2(std::string tarvekId, int blockLength);

    void reset() override {}
    void process() override;
    void init(DspArchive&) override {}
    void getArchive(DspArchive&) override {}
};
