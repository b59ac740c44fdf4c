#include "algorithms/amp/ArvelReverb65PowerSupply.h"

#include <algorithm>

namespace {

// The threshold of every row is the one that the supply was built with.
struct SagRow {
    float attackSeconds;
    float releaseSeconds;
    float ratio;
};

constexpr SagRow kSagTable[3] = {
    {0.001f, 0.1f, 2.0f},  // less
    {0.001f, 0.1f, 2.0f},  // match
    {0.001f, 0.1f, 2.0f},  // more
};

}  // namespace

ArvelReverb65PowerSupply::ArvelReverb65PowerSupply(int blockLength, float thresholdVolts, float sampleRateHz)
    : PowerSupply2(0.001f, 0.1f, thresholdVolts, 2.0f, sampleRateHz, 1.0f),
      blockLength_(blockLength),
      threshold_(thresholdVolts) {}

void ArvelReverb65PowerSupply::setSag(int index) {
    const SagRow& row = kSagTable[std::clamp(index, 0, 2)];
    setAttackTime(row.attackSeconds);
    setReleaseTime(row.releaseSeconds);
    setThreshold(threshold_);
    setRatio(row.ratio);
}
