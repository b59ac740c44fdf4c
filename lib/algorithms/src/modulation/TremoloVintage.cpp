#include "algorithms/modulation/TremoloVintage.h"

#include <algorithm>
#include <cmath>

#include "KnobRange.h"

namespace {

constexpr float kControlSeconds = 0.02f;
constexpr float kFirstHz = 5.4f;
constexpr float kFirstPole = 60.0f;
constexpr float kLowestHz = 0.001f;

float pole(float cutoffHz, float sampleRateHz) {
    return std::exp(-6.2831855f * cutoffHz / sampleRateHz);
}

float cutoff(float rateHz, float share, float knob) {
    return rateHz / (share * 1.414f * (0.1f + 0.9f * knob));
}

}  // namespace

TremoloVintage::TremoloVintage(int blockLength, float sampleRateHz)
    : blockLength_(blockLength),
      sampleRate_(sampleRateHz),
      rate_(kControlSeconds, sampleRateHz, blockLength),
      level_(kControlSeconds, sampleRateHz, blockLength),
      duty_(kControlSeconds, sampleRateHz, blockLength),
      attackPole_(pole(kFirstPole, sampleRateHz)),
      releasePole_(pole(kFirstPole, sampleRateHz)),
      lfo_(sampleRateHz),
      gains_(static_cast<std::size_t>(blockLength), 0.0f) {
    rate_.snap(kFirstHz);
    duty_.snap(0.5f);
}

void TremoloVintage::process(const float* inLeft, const float* inRight, float* outLeft, float* outRight) {
    lfo_.setRate(rate_.nextValue());
    lfo_.setDuty(duty_.nextValue());
    lfo_.tick(gains_.data(), blockLength_);

    const float attackPole = attackPole_.load(std::memory_order_relaxed);
    const float releasePole = releasePole_.load(std::memory_order_relaxed);
    const BlockRamp::Line level = level_.next();
    for (int n = 0; n < blockLength_; ++n) {
        const float y =
            gains_[n] > 0.0f ? (1.0f - releasePole) + releasePole * releaseState_ : attackPole * attackState_;
        attackState_ = releaseState_ = y;
        const float g = level.at(n);
        gains_[n] = y * g - g;
    }

    for (int n = 0; n < blockLength_; ++n)
        outLeft[n] = inLeft[n] + gains_[n] * inLeft[n];
    for (int n = 0; n < blockLength_; ++n)
        outRight[n] = inRight[n] + gains_[n] * inRight[n];
}

void TremoloVintage::setRate(float hz, bool init) {
    rate_.set(hz > kLowestHz ? hz : kLowestHz, init);
    designFilters();
}

void TremoloVintage::setLevel(float level, bool init) {
    level_.set(levelTaper_.calc(knobOr(0.0f, "level", level)), init);
}

void TremoloVintage::setDuty(float duty, bool init) {
    duty_.set(knobOr(0.0f, "duty", duty), init);
    designFilters();
}

void TremoloVintage::setAttack(float attack) {
    attack_ = knobOr(0.0f, "attack", attack);
    designFilters();
}

void TremoloVintage::setRelease(float release) {
    release_ = knobOr(0.0f, "release", release);
    designFilters();
}

float TremoloVintage::attackCutoffHz() const {
    return cutoff(rate_.target(), 0.75f - 0.5f * duty_.target(), attack_);
}

float TremoloVintage::releaseCutoffHz() const {
    return cutoff(rate_.target(), 0.25f + 0.5f * duty_.target(), release_);
}

void TremoloVintage::designFilters() {
    attackPole_.store(pole(attackCutoffHz(), sampleRate_), std::memory_order_relaxed);
    releasePole_.store(pole(releaseCutoffHz(), sampleRate_), std::memory_order_relaxed);
}

void TremoloVintage::reset() {
    for (BlockRamp* control : {&rate_, &level_, &duty_})
        control->snapToTarget();
    lfo_.reset();
    attackState_ = 1.0f;
    releaseState_ = 0.0f;
}
