// The sum of two stereo pairs: inputs 0 and 1 plus inputs 2 and 3.
#pragma once

#include <string>

#include "core/DspUnit/DspUnit.h"

class DU_StereoAdder final : public DspUnit {
public:
    // blockLength in samples.
    DU_StereoAdder(std::string tarvekId, int blockLength);

    void reset() override {}
    void process() override;
    void init(DspArchive&) override {}
    void getArchive(DspArchive&) override {}
};
