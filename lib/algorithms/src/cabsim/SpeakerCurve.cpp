#include "SpeakerCurve.h"

#include <cmath>
#include <cstring>

#include "math/BqHighShelf.h"
#include "math/BqPeak.h"

namespace {

BiquadChain design(const SpeakerCurveValues& values, float sampleRate) {
    std::vector<BiquadCoefficients<float>> sections;
    for (const SpeakerCurveValues::Peak& peak : values.peaks)
        sections.push_back(BqPeak(peak.gainDb, peak.hz, peak.q, sampleRate).coefficients());
    const SpeakerCurveValues::Shelf& shelf = values.shelf;
    sections.push_back(BqHighShelf(shelf.gainDb, shelf.hz, shelf.slope, sampleRate).coefficients());
    return {std::move(sections), std::pow(10.0f, values.trimDb * 0.05f)};
}

}  // namespace

SpeakerCurve::SpeakerCurve(const SpeakerCurveValues& values, int blockLength, float sampleRate)
    : blockLength_(blockLength), chain_(design(values, sampleRate)) {}

void SpeakerCurve::process(const float* in, float* out) {
    std::memmove(out, in, static_cast<std::size_t>(blockLength_) * sizeof(float));
    chain_.process(out, blockLength_);
}
