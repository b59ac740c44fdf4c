// One channel through.
#pragma once

#include <string>

#include "core/DspUnit/DspUnit.h"

class DU_PassthruMono final : public DspUnit {
public:
    // blockLength in samples.
    DU_PassthruMono(std::string tarvekId, int blockLength);

    void reset() override {}
    void process() override;
    void init(DspArchive&) override {}
    void getArchive(DspArchive&) override {}
};
