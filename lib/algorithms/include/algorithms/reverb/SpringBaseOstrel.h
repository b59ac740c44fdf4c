// SpringBase on the record of the Ostrel tank.
#pragma once

#include "algorithms/reverb/SpringBase.h"

namespace rvb {

class SpringBaseOstrel : public SpringBase {
public:
    // As SpringBase.
    SpringBaseOstrel(const SpringVoicingOstrel& voicing, int blockLength, float sampleRate)
        : SpringBase(voicing.common, voicing.inputScale, voicing.wetTrims, voicing.dryTrims, blockLength,
                     sampleRate) {}
};

}  // namespace rvb
