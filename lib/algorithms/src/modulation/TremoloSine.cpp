#include "algorithms/modulation/TremoloSine.h"

#include <algorithm>

#include "KnobRange.h"
#include "utility/Multiversion.h"

namespace {

constexpr float kControlSeconds = 0.02f;
constexpr float kFirstHz = 5.4f;
constexpr float kLowestHz = 1.3f;
constexpr float kHighestHz = 10.0f;

// A rate that is not a number becomes the lowest.
float limitedRate(float hz) {
    return hz > kLowestHz ? std::min(hz, kHighestHz) : kLowestHz;
}

// The LFO's values to gains, in place.
TARVEK_MULTIVERSION
void gainsOfLfo(float clip, BlockRamp::Line level, float* values, int count) {
    for (int n = 0; n < count; ++n) {
        const float u = (clip + 1.0f) * values[n];
        const float g = level.at(n);
        const float below = 1.0f - g + g * u;
        values[n] = u > 1.0f ? 1.0f : below;
    }
}

}  // namespace

TremoloSine::TremoloSine(int blockLength, float sampleRateHz)
    : blockLength_(blockLength),
      rate_(kControlSeconds, sampleRateHz),
      level_(kControlSeconds, sampleRateHz, blockLength),
      duty_(kControlSeconds, sampleRateHz, blockLength),
      dist_(kControlSeconds, sampleRateHz, blockLength),
      clip_(kControlSeconds, sampleRateHz, blockLength),
      lfo_(sampleRateHz),
      gains_(static_cast<std::size_t>(blockLength), 0.0f) {
    lfo_.setAmplitude(0.5f);
    lfo_.setOffset(0.5f);
    setRate(kFirstHz, true);
    duty_.snap(0.5f);
    dist_.snap(0.5f);
}

void TremoloSine::process(const float* inLeft, const float* inRight, float* outLeft, float* outRight) {
    lfo_.setDuty(duty_.nextValue());
    lfo_.setDist(dist_.nextValue());
    runLfo(gains_.data());
    gainsOfLfo(clip_.nextValue(), level_.next(), gains_.data(), blockLength_);
    for (int n = 0; n < blockLength_; ++n)
        outLeft[n] = inLeft[n] * gains_[n];
    for (int n = 0; n < blockLength_; ++n)
        outRight[n] = inRight[n] * gains_[n];
}

void TremoloSine::runLfo(float* out) {
    if (rate_.isAtRest()) {
        lfo_.setRate(rate_.current());
        lfo_.tick(out, blockLength_);
        return;
    }
    for (int n = 0; n < blockLength_; ++n) {
        lfo_.setRate(rate_.tick());
        out[n] = lfo_.tick();
    }
}

void TremoloSine::setRate(float hz, bool init) {
    rate_.setTarget(limitedRate(hz));
    if (init) rate_.snap(limitedRate(hz));
}

void TremoloSine::setLevel(float level, bool init) {
    level_.set(levelTaper_.calc(knobOr(0.0f, "level", level)), init);
}

void TremoloSine::setDuty(float duty, bool init) {
    duty_.set(knobOr(0.0f, "duty", duty), init);
}

void TremoloSine::setDist(float dist, bool init) {
    dist_.set(knobOr(0.0f, "dist", dist), init);
}

void TremoloSine::setClip(float clip, bool init) {
    clip_.set(knobOr(0.0f, "clip", clip), init);
}

void TremoloSine::reset() {
    rate_.snap(rate_.target());
    for (BlockRamp* control : {&level_, &duty_, &dist_, &clip_})
        control->snapToTarget();
    lfo_.reset();
}
