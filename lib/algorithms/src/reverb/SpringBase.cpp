#include "algorithms/reverb/SpringBase.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "utility/Log.h"

namespace rvb {
namespace {

constexpr float kNoTrims[2] = {1.0f, 1.0f};
constexpr float kDwellScale = 0.707f;

// Samples of a time.
double samplesOf(float milliseconds, float sampleRate) {
    return static_cast<double>(milliseconds) * 0.001 * sampleRate;
}

// A tap of x samples reads between its index and the one after it, which start at ceil(max) - ceil(x) in a
// ring of ceil(max) + 3 samples whose write index starts at 0: that is ceil(x) + 3 and ceil(x) + 2 samples
// back. The later sample weighs 1 - ceil(x) + x. In the terms of ConstFractDelay, which counts from the
// sample before:
double tapDelay(float milliseconds, float sampleRate) {
    const double x = samplesOf(milliseconds, sampleRate);
    return 2.0 * std::ceil(x) + 1.0 - x;
}

int longestTap(float milliseconds, float sampleRate) {
    return static_cast<int>(std::ceil(samplesOf(milliseconds, sampleRate))) + 2;
}

std::array<int, DampedCombs::kCount> combLengths(const SpringVoicing& voicing, float sampleRate) {
    std::array<int, DampedCombs::kCount> lengths{};
    for (std::size_t k = 0; k < lengths.size(); ++k)
        lengths[k] = static_cast<int>(samplesOf(voicing.combs[k].delayMs, sampleRate));
    return lengths;
}

float lerp(float low, float high, float v) {
    return low + (high - low) * v;
}

// A factor within 0 to 1, or the range's lower end.
float checkedFactor(const char* name, float v, float low) {
    if (v >= 0.0f && v <= 1.0f) return v;
    TVK_ERROR("%s out of range, %f", name, static_cast<double>(v));
    return low;
}

std::vector<float> blockOf(int length) {
    return std::vector<float>(static_cast<std::size_t>(length));
}

}  // namespace

SpringBase::SpringBase(const SpringVoicing& voicing, int blockLength, float sampleRate)
    : SpringBase(voicing, 1.0f, kNoTrims, kNoTrims, blockLength, sampleRate) {}

SpringBase::SpringBase(const SpringVoicing& voicing, float inputScale, const float (&wetTrims)[2],
                       const float (&dryTrims)[2], int blockLength, float sampleRate)
    : voicing_(voicing),
      sampleRate_(sampleRate),
      inputScale_(inputScale),
      wetTrims_{wetTrims[0], wetTrims[1]},
      dryTrims_{dryTrims[0], dryTrims[1]},
      inputPeak_(voicing.inputPeak.gainDb, voicing.inputPeak.frequencyHz, voicing.inputPeak.q, sampleRate),
      earlyTaps_(longestTap(voicing.earlyMaxMs, sampleRate), kEarlyTaps),
      fixedFilters_(voicing.fixedFilters, static_cast<int>(std::size(voicing.fixedFilters))),
      dispersion_(voicing.dispersion, static_cast<int>(std::size(voicing.dispersion))),
      alignment_(dispersion_.lateness() - fixedFilters_.lateness(), 1),
      loopDelay_(longestTap(voicing.loopMaxMs, sampleRate), 1),
      combs_(combLengths(voicing, sampleRate)),
      firstShelf_(sampleRate, voicing.firstShelf.lowDb, voicing.firstShelf.highDb,
                  voicing.firstShelf.frequencyHz),
      secondShelf_(sampleRate, voicing.secondShelf.lowDb, voicing.secondShelf.highDb,
                   voicing.secondShelf.frequencyHz),
      tone_(voicing.toneMinHz, sampleRate),
      early_(voicing.earlyWeights.first, voicing.earlyWeights.second, voicing.rampSeconds, sampleRate),
      late_(voicing.lateWeights.first, voicing.lateWeights.second, voicing.rampSeconds, sampleRate),
      outputLeft_(voicing.outputWeights.first * dryTrims[0], voicing.outputWeights.second * wetTrims[0],
                  voicing.rampSeconds, sampleRate),
      outputRight_(voicing.outputWeights.first * dryTrims[1], voicing.outputWeights.second * wetTrims[1],
                   voicing.rampSeconds, sampleRate),
      filtered_(blockOf(blockLength)),
      loopIn_(blockOf(blockLength)),
      loopOut_(blockOf(blockLength)),
      dispersed_(blockOf(blockLength)),
      reverb_(blockOf(blockLength)),
      combIn_(blockOf(blockLength)),
      dryLeft_(blockOf(blockLength)),
      dryRight_(blockOf(blockLength)),
      reflected_(blockOf(blockLength)) {
    setInputGain(voicing.dwellMin);
    for (int k = 0; k < kEarlyTaps; ++k) {
        earlyTaps_.setTap(k, tapDelay(voicing.earlyTapMs[k], sampleRate));
        earlyTaps_.setTapGain(k, voicing.earlyTapGains[k]);
    }
    earlyTaps_.setFeedback(voicing.earlyFeedback);
    // Its own way through takes one sample of the difference.
    alignment_.setTap(0, dispersion_.lateness() - fixedFilters_.lateness() - 1);
    loopDelay_.setTap(0, tapDelay(voicing.loopTapMs, sampleRate) - dispersion_.lateness());
    loopDelay_.setTapGain(0, voicing.loopTapGain);
    loopDelay_.setFeedback(voicing.loopDelayFeedback);
    for (int k = 0; k < DampedCombs::kCount; ++k) {
        combs_.setDamping(k, poleOf(voicing.combs[k].dampingHz));
        combs_.setFeedback(k, voicing.combs[k].feedback);
    }
    allpasses_.reserve(std::size(voicing.allpasses));
    for (const auto& allpass : voicing.allpasses)
        allpasses_.emplace_back(static_cast<int>(samplesOf(allpass.delayMs, sampleRate)), allpass.forwardGain,
                                allpass.backGain);
}

void SpringBase::process(const float* inLeft, const float* inRight, float* outLeft, float* outRight,
                         int count) {
    const float* reverb = reverberate(inLeft, inRight, count);
    mix(reverb, reverb, outLeft, outRight, count);
}

const float* SpringBase::reverberate(const float* inLeft, const float* inRight, int count) {
    const float inputGain = this->inputGain();
    for (int i = 0; i < count; ++i) {
        const auto n = static_cast<std::size_t>(i);
        dryLeft_[n] = inLeft[i];
        dryRight_[n] = inRight[i];
        filtered_[n] = (inLeft[i] + inRight[i]) * inputGain;
    }
    inputPeak_.process(filtered_.data(), count);
    earlyTaps_.process(filtered_.data(), reflected_.data(), count);

    const float combInputGain = voicing_.combInputGain;
    const float loopFeedback = voicing_.loopFeedback;
    for (int i = 0; i < count; ++i) {
        const auto n = static_cast<std::size_t>(i);
        combIn_[n] = filtered_[n] * combInputGain;
        loopIn_[n] = loopOut_[n] * loopFeedback;
    }

    dispersion_.process(loopIn_.data(), dispersed_.data(), count);
    fixedFilters_.process(filtered_.data(), filtered_.data(), count);
    alignment_.process(filtered_.data(), loopIn_.data(), count);
    for (int i = 0; i < count; ++i)
        loopIn_[static_cast<std::size_t>(i)] += dispersed_[static_cast<std::size_t>(i)];
    loopDelay_.process(loopIn_.data(), loopOut_.data(), count);

    std::fill_n(reverb_.data(), count, 0.0f);
    combs_.addTo(reverb_.data(), combIn_.data(), count);
    for (SchroederAllpass& allpass : allpasses_)
        allpass.process(reverb_.data(), count);
    firstShelf_.process(reverb_.data(), count);
    early_.process(reflected_.data(), reverb_.data(), reverb_.data(), count);
    late_.process(loopOut_.data(), reverb_.data(), reverb_.data(), count);
    secondShelf_.process(reverb_.data(), count);
    tone_.process(reverb_.data(), count);
    return reverb_.data();
}

void SpringBase::mix(const float* reverbLeft, const float* reverbRight, float* outLeft, float* outRight,
                     int count) {
    outputLeft_.process(dryLeft_.data(), reverbLeft, outLeft, count);
    outputRight_.process(dryRight_.data(), reverbRight, outRight, count);
}

void SpringBase::reset() {
    inputPeak_.clear();
    earlyTaps_.clear();
    fixedFilters_.clear();
    dispersion_.clear();
    alignment_.clear();
    loopDelay_.clear();
    combs_.clear();
    for (SchroederAllpass& allpass : allpasses_)
        allpass.clear();
    firstShelf_.clear();
    secondShelf_.clear();
    tone_.reset();
    // The loop's feedback waits here from block to block.
    std::fill(loopOut_.begin(), loopOut_.end(), 0.0f);
}

float SpringBase::poleOf(float cutoffHz) const {
    return static_cast<float>(std::exp(-2.0 * std::numbers::pi * cutoffHz / sampleRate_));
}

float SpringBase::gainOf(float db) const {
    return std::pow(10.0f, std::clamp(db, voicing_.levelMinDb, voicing_.levelMaxDb) * 0.05f);
}

void SpringBase::setInputGain(float gain) {
    inputGain_.store(gain * inputScale_, std::memory_order_relaxed);
}

void SpringBase::setDryLevelDb(float db, bool isInit) {
    outputLeft_.setFirst(gainOf(db) * dryTrims_[0], isInit);
    outputRight_.setFirst(gainOf(db) * dryTrims_[1], isInit);
}

void SpringBase::setWetLevelDb(float db, bool isInit) {
    outputLeft_.setSecond(gainOf(db) * wetTrims_[0], isInit);
    outputRight_.setSecond(gainOf(db) * wetTrims_[1], isInit);
}

void SpringBase::setDecayHz(float cutoffHz) {
    const float pole = poleOf(std::clamp(cutoffHz, voicing_.decayMinHz, voicing_.decayMaxHz));
    for (int comb = 0; comb < DampedCombs::kCount; ++comb)
        combs_.setDamping(comb, pole);
}

void SpringBase::setDwell(float v) {
    const float factor = checkedFactor("dwell", v, voicing_.dwellMin);
    setInputGain(lerp(voicing_.dwellMin, voicing_.dwellMax, factor) * kDwellScale);
}

void SpringBase::setDiffuse(float v) {
    const float factor = checkedFactor("diffuse", v, voicing_.diffuseMin);
    const float feedback = lerp(voicing_.diffuseMin, voicing_.diffuseMax, factor);
    for (int comb = 0; comb < DampedCombs::kCount; ++comb)
        combs_.setFeedback(comb, feedback);
}

void SpringBase::setToneHz(float cutoffHz) {
    tone_.setFrequency(std::clamp(cutoffHz, voicing_.toneMinHz, voicing_.toneMaxHz));
}

void SpringBase::setRampSeconds(float seconds) {
    for (SpringRamp* ramp : {&early_, &late_, &outputLeft_, &outputRight_})
        ramp->setTime(seconds, sampleRate_);
}

float SpringBase::combDampingHz(int comb) const {
    return static_cast<float>(-sampleRate_ / (2.0 * std::numbers::pi) * std::log(combs_.damping(comb)));
}

float SpringBase::toneHz() const {
    return static_cast<float>(-sampleRate_ / (2.0 * std::numbers::pi) * std::log(tone_.pole()));
}

}  // namespace rvb
