#include "algorithms/amp/ValveStage.h"

namespace {

constexpr int kRate = 3;
constexpr int kFilterLength = 10;
constexpr float kCouplingHz = 5.0f;

}  // namespace

ValveStage::ValveStage(int blockLength, float sampleRate, float inputRange, float outputMin, float outputMax,
                       const tables::ValveCurve& curve)
    : sampler_(blockLength, kRate, kFilterLength),
      transfer_(sampler_.planesLength(), inputRange, outputMin, outputMax, curve.segments, curve.breakpoints),
      highPass_(kCouplingHz, sampleRate),
      planes_(static_cast<std::size_t>(sampler_.planesLength())),
      blockLength_(blockLength) {}

void ValveStage::process(float* buffer) {
    sampler_.upToPlanes(buffer, planes_.data());
    transfer_.process(planes_.data());
    sampler_.downFromPlanes(planes_.data(), buffer);
    highPass_.process(buffer, blockLength_);
}
