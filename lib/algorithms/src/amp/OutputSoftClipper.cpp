#include "algorithms/amp/OutputSoftClipper.h"

#include <cmath>

#include "tables/ArvelReverb65Curves.h"

namespace {

constexpr int kRate = 5;
constexpr int kFilterLength = 10;

}  // namespace

OutputSoftClipper::OutputSoftClipper(int blockLength, float thresholdDb, float /*sampleRate*/)
    : blockLength_(blockLength),
      sampler_(blockLength, kRate, kFilterLength),
      threshold_(std::pow(10.0f, thresholdDb * -0.05f)),
      transfer_(sampler_.planesLength(), 1.0f, -1.0f, 1.0f, tables::kOutputSoftClip.segments,
                tables::kOutputSoftClip.breakpoints),
      planes_(static_cast<std::size_t>(sampler_.planesLength())) {}

void OutputSoftClipper::process(float* buffer) {
    for (int n = 0; n < blockLength_; ++n)
        buffer[n] = buffer[n] / threshold_;
    sampler_.upToPlanes(buffer, planes_.data());
    transfer_.process(planes_.data());
    sampler_.downFromPlanes(planes_.data(), buffer);
    for (int n = 0; n < blockLength_; ++n)
        buffer[n] = buffer[n] * threshold_;
}
