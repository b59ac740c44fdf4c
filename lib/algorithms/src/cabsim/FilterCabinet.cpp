#include "FilterCabinet.h"

#include <cmath>
#include <cstring>

#include "math/BqHpf.h"
#include "math/BqLpf.h"
#include "math/BqPeak.h"

namespace {

BiquadChain design(const FilterCabinetValues& values, float sampleRate) {
    std::vector<BiquadCoefficients<float>> sections;
    sections.push_back(BqHpf(0.0f, values.highPass.hz, values.highPass.q, sampleRate).coefficients());
    for (const FilterCabinetValues::Peak& peak : values.peaks)
        sections.push_back(BqPeak(peak.gainDb, peak.hz, peak.q, sampleRate).coefficients());
    for (const FilterCabinetValues::Corner& corner : values.lowPass)
        sections.push_back(BqLpf(0.0f, corner.hz, corner.q, sampleRate).coefficients());
    return {std::move(sections), std::pow(10.0f, values.trimDb * 0.05f)};
}

}  // namespace

FilterCabinet::FilterCabinet(const FilterCabinetValues& values, int blockLength, float sampleRate)
    : blockLength_(blockLength), chain_(design(values, sampleRate)) {}

void FilterCabinet::process(const float* in, float* out) {
    std::memmove(out, in, static_cast<std::size_t>(blockLength_) * sizeof(float));
    chain_.process(out, blockLength_);
}
