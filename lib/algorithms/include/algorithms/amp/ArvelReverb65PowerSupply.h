// The supply of the two-channel reverb amp: PowerSupply2 with 1 ms attack, 100 ms release and ratio 2, a
// block at a time at the system rate.
#pragma once

#include "algorithms/amp/PowerSupply2.h"

class ArvelReverb65PowerSupply : public PowerSupply2 {
public:
    // blockLength in samples, threshold in volts.
    ArvelReverb65PowerSupply(int blockLength, float thresholdVolts, float sampleRateHz);

    // One block in place. Audio thread.
    void process(float* buffer) { PowerSupply2::process(buffer, blockLength_); }

    // 0 less, 1 match, 2 more; any other index is the nearest of them. The three rows of this amp's table are
    // alike, so its sound does not depend on it. Control side.
    void setSag(int index);

private:
    const int blockLength_;
    const float threshold_;
};
