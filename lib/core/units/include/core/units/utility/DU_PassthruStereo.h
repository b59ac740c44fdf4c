// Two channels through.
#pragma once

#include <string>

#include "core/DspUnit/DspUnit.h"

class DU_PassthruStereo final : public DspUnit {
public:
    // blockLength in samples.
    DU_PassthruStereo(std::string tarvekId, int blockLength);

    void reset() override {}
    void process() override;
    void init(DspArchive&) override {}
    void getArchive(DspArchive&) override {}
};
