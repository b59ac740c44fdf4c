#include "algorithms/modulation/OpticalTremoloCell.h"

#include <algorithm>

#include "algorithms/modulation/PhotocellLaw.h"
#include "utility/Log.h"
#include "utility/Multiversion.h"

namespace {

constexpr const char* kTag = "OpticalTremoloCell";
constexpr float kControlSeconds = 0.02f;
constexpr float kRisingSeconds = 0.0238f;
constexpr float kFirstKnob = 0.3f;

using Line = BlockRamp::Line;

// side: -1 while the lamp is lit, 1 while it is dark.
TARVEK_MULTIVERSION
void lightLamp(const float* sines, Line threshold, float* side, int count) {
    for (int n = 0; n < count; ++n)
        side[n] = sines[n] > threshold.at(n) ? -1.0f : 1.0f;
}

// The two branches in one: r((e - 0.5) slope) in the dark, 1 - r((0.5 - e) slope) in the light.
TARVEK_MULTIVERSION
void photocellShunt(const float* side, const float* envelopes, Line slope, Line lampFloor, float* shunt,
                    int count) {
    for (int n = 0; n < count; ++n) {
        const float r = photocellLaw(side[n] * (envelopes[n] - 0.5f) * slope.at(n));
        shunt[n] = (0.5f + side[n] * (r - 0.5f)) * (1.0f - lampFloor.at(n));
    }
}

// Apart from photocellShunt, since the compiler gives up on vectors when the limits stand in that loop.
TARVEK_MULTIVERSION
void gainsOfShunt(const float* shunt, Line depth, Line mute, float* gains, int count) {
    for (int n = 0; n < count; ++n) {
        const float notBelow0 = shunt[n] > 0.0f ? shunt[n] : 0.0f;
        const float c = notBelow0 < 1.0f ? notBelow0 : 1.0f;
        gains[n] = 1.0f - c * (depth.at(n) * mute.at(n));
    }
}

// The lamp switches a few times a second, so a block is one stretch or two: within a stretch the envelope is
// a limited straight line, whose samples do not wait for each other.
float ramp(float from, float step, float* out, int count) {
    for (int n = 0; n < count; ++n) {
        const float e = from + step * static_cast<float>(n + 1);
        const float notBelow0 = e > 0.0f ? e : 0.0f;
        out[n] = notBelow0 < 1.0f ? notBelow0 : 1.0f;
    }
    return out[count - 1];
}

float panel(float knob) {
    return 1.0f + 9.0f * knob;
}

// A knob that is not a number stands at 0.
float limitedKnob(float knob) {
    return knob > 0.0f ? std::min(knob, 1.0f) : 0.0f;
}

}  // namespace

OpticalTremoloCell::OpticalTremoloCell(int blockLength, float sampleRateHz,
                                       const OpticalTremoloRanges& ranges)
    : blockLength_(blockLength),
      sampleRate_(sampleRateHz),
      ranges_(ranges),
      risePerSample_(1.0f / (sampleRateHz * kRisingSeconds)),
      rate_(kControlSeconds, sampleRateHz, blockLength),
      depth_(kControlSeconds, sampleRateHz, blockLength),
      threshold_(kControlSeconds, sampleRateHz, blockLength),
      slope_(kControlSeconds, sampleRateHz, blockLength),
      lampFloor_(kControlSeconds, sampleRateHz, blockLength),
      fallingTime_(kControlSeconds, sampleRateHz, blockLength),
      mute_(kControlSeconds, sampleRateHz, blockLength),
      sine_(ranges.slowestHz, sampleRateHz),
      sines_(static_cast<std::size_t>(blockLength), 0.0f),
      side_(sines_),
      envelopes_(sines_),
      shunt_(sines_),
      gains_(sines_) {
    applySpeed(kFirstKnob, true);
    applyIntensity(kFirstKnob, true);
    mute_.snap(1.0f);
}

void OpticalTremoloCell::process(float* x) {
    gains(gains_.data());
    for (int n = 0; n < blockLength_; ++n)
        x[n] *= gains_[n];
}

void OpticalTremoloCell::process(const float* inLeft, const float* inRight, float* outLeft, float* outRight) {
    gains(gains_.data());
    for (int n = 0; n < blockLength_; ++n) {
        const double sum = static_cast<double>(inLeft[n]) + inRight[n];
        outLeft[n] = outRight[n] = static_cast<float>(gains_[n] * sum * 0.5);
    }
}

void OpticalTremoloCell::processStereo(const float* inLeft, const float* inRight, float* outLeft,
                                       float* outRight) {
    gains(gains_.data());
    for (int n = 0; n < blockLength_; ++n)
        outLeft[n] = inLeft[n] * gains_[n];
    for (int n = 0; n < blockLength_; ++n)
        outRight[n] = inRight[n] * gains_[n];
}

void OpticalTremoloCell::gains(float* out) {
    sine_.setFrequency(rate_.nextValue());
    sine_.tick(sines_.data(), blockLength_);
    lightLamp(sines_.data(), threshold_.next(), side_.data(), blockLength_);
    runLamp();
    photocellShunt(side_.data(), envelopes_.data(), slope_.next(), lampFloor_.next(), shunt_.data(),
                   blockLength_);
    gainsOfShunt(shunt_.data(), depth_.next(), mute_.next(), out, blockLength_);
}

void OpticalTremoloCell::runLamp() {
    const float fallPerSample = 1.0f / (sampleRate_ * fallingTime_.nextValue());
    for (int n = 0; n < blockLength_;) {
        int end = n + 1;
        while (end < blockLength_ && side_[end] == side_[n])
            ++end;
        envelope_ =
            ramp(envelope_, side_[n] < 0.0f ? risePerSample_ : -fallPerSample, &envelopes_[n], end - n);
        n = end;
    }
}

void OpticalTremoloCell::setSpeed(float knob, bool init) {
    const float x = limitedKnob(knob);
    applySpeed(x, init);
    tvk::log::debug(kTag, "Speed: knob=%0.3f, value=%0.3f, panel=%0.2f", x, rate_.target(), panel(x));
}

void OpticalTremoloCell::setIntensity(float knob, bool init) {
    const float y = limitedKnob(knob);
    applyIntensity(y, init);
    tvk::log::debug(kTag, "Intensity: knob=%0.3f, value=%0.3f, panel=%0.2f", y, depth_.target(), panel(y));
}

void OpticalTremoloCell::setMute(bool on, bool init) {
    tvk::log::debug(kTag, init ? "Mute init, %d" : "Mute set, %d", on);
    mute_.set(on ? 0.0f : 1.0f, init);
}

void OpticalTremoloCell::applySpeed(float x, bool init) {
    rate_.set(ranges_.slowestHz + (ranges_.fastestHz - ranges_.slowestHz) * x, init);
    threshold_.set(0.86f - 0.06f * thresholdTaper_.calc(x), init);
    slope_.set(-12.6f - 5.4f * slopeTaper_.calc(x), init);
    lampFloor_.set(ranges_.lampFloorSlow + (ranges_.lampFloorFast - ranges_.lampFloorSlow) * x, init);
    fallingTime_.set(0.0732f - 0.02f * x, init);
}

void OpticalTremoloCell::applyIntensity(float y, bool init) {
    depth_.set(depthTaper_.calc(y), init);
}

void OpticalTremoloCell::reset() {
    for (BlockRamp* control : {&rate_, &depth_, &threshold_, &slope_, &lampFloor_, &fallingTime_, &mute_})
        control->snapToTarget();
    sine_.reset();
    envelope_ = 0.0f;
}
