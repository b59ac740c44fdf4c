#include "algorithms/modulation/TremoloHarmonic.h"

#include <algorithm>

#include "KnobRange.h"

namespace {

constexpr float kSlowestHz = 1.75f;
constexpr float kFastestHz = 8.5f;
constexpr float kLineSeconds = 0.05f;
constexpr float kInputHz = 11.0f;
constexpr float kBodyHz = 80.0f;
// The line can feed back on itself; the delayed LFO of this tremolo is a plain copy.
constexpr float kLineFeedback = 0.0f;

// What tells the two circuits apart: corners in Hz, and the share that the speed d takes from each band.
struct Circuit {
    float lowHz;
    float highHz;
    float lowSwing, lowSwingByD;
    float highSwing, highSwingByD;
    float gain;
};

constexpr Circuit kCircuits[2] = {
    {170.0f, 760.0f, 1.0f, -0.511f, 0.55f, -0.11f, 2.018f},
    {189.0f, 916.0f, 1.0f, -0.6f, 0.99f, -0.59f, 2.7662f},
};

// A speed that is not a number becomes the slowest.
float limitedSpeed(float hz) {
    return hz > kSlowestHz ? std::min(hz, kFastestHz) : kSlowestHz;
}

}  // namespace

TremoloHarmonic::Filters::Filters(Mode mode, float sampleRateHz)
    : low(kCircuits[mode].lowHz, sampleRateHz),
      body(kBodyHz, sampleRateHz),
      high(kCircuits[mode].highHz, sampleRateHz) {}

void TremoloHarmonic::Filters::reset() {
    low.reset();
    body.reset();
    high.reset();
}

TremoloHarmonic::Channel::Channel(float sampleRateHz)
    : input(kInputHz, sampleRateHz), paths{{k6G4, sampleRateHz}, {k6G4A, sampleRateHz}} {}

TremoloHarmonic::TremoloHarmonic(int blockLength, float sampleRateHz)
    : blockLength_(blockLength),
      sampleRate_(sampleRateHz),
      speed_(2.0f * blockLength / sampleRateHz, sampleRateHz, blockLength),
      intensity_(2.0f * blockLength / sampleRateHz, sampleRateHz, blockLength),
      shape_(2.0f * blockLength / sampleRateHz, sampleRateHz, blockLength),
      lfo_(sampleRateHz),
      delay_(kLineSeconds, sampleRateHz, kLineFeedback),
      left_(sampleRateHz),
      right_(sampleRateHz),
      lfoNow_(static_cast<std::size_t>(blockLength), 0.0f),
      lfoLater_(lfoNow_),
      low_(lfoNow_),
      high_(lfoNow_),
      filtered_(lfoNow_) {
    speed_.snap(kSlowestHz);
    shape_.snap(0.5f);
}

void TremoloHarmonic::process(const float* inLeft, const float* inRight, float* outLeft, float* outRight) {
    followMode();
    const float speed = speed_.nextValue();
    const float shape = shape_.nextValue();
    lfo_.setRate(speed);
    lfo_.setAmplitude(intensity_.nextValue());
    lfo_.setDuty(0.5f + 0.3f * shape);
    lfo_.setShapeMix(1.0f - shape);

    const Circuit& circuit = kCircuits[mode_];
    const float d = (speed - kSlowestHz) / (kFastestHz - kSlowestHz);
    const float a = circuit.lowSwing + circuit.lowSwingByD * d;
    const float b = circuit.highSwing + circuit.highSwingByD * d;
    lfo_.tick(lfoNow_.data(), blockLength_);
    delay_.process(lfoNow_.data(), (0.005f + 0.005f * d) * sampleRate_, lfoLater_.data(), blockLength_);
    const float* const highLfo = mode_ == k6G4 ? lfoLater_.data() : lfoNow_.data();

    const auto run = [&](Channel& channel, const float* in, float* out) {
        splitBands(channel, in);
        for (int n = 0; n < blockLength_; ++n)
            out[n] = ((0.5f + lfoNow_[n] * a) * low_[n] + (0.5f - highLfo[n] * b) * high_[n]) * circuit.gain;
    };
    run(left_, inLeft, outLeft);
    run(right_, inRight, outRight);
}

void TremoloHarmonic::followMode() {
    const Mode wanted = static_cast<Mode>(wantedMode_.load(std::memory_order_relaxed));
    if (wanted == mode_) return;
    mode_ = wanted;
    left_.paths[mode_].reset();
    right_.paths[mode_].reset();
}

void TremoloHarmonic::splitBands(Channel& channel, const float* in) {
    const int count = blockLength_;
    Filters& path = channel.paths[mode_];
    std::copy_n(in, count, high_.data());
    channel.input.process(high_.data(), count);

    std::copy_n(high_.data(), count, low_.data());
    path.low.process(low_.data(), count);

    if (mode_ == k6G4) {
        std::copy_n(high_.data(), count, filtered_.data());
        path.body.process(filtered_.data(), count);
        for (int n = 0; n < count; ++n)
            high_[n] += filtered_[n];
    }
    std::copy_n(high_.data(), count, filtered_.data());
    path.high.process(filtered_.data(), count);
    for (int n = 0; n < count; ++n)
        high_[n] -= filtered_[n];
}

void TremoloHarmonic::setSpeed(float hz, bool init) {
    speed_.set(limitedSpeed(hz), init);
}

void TremoloHarmonic::setIntensity(float intensity, bool init) {
    const float limited = intensity > 0.0f ? std::min(intensity, 1.0f) : 0.0f;
    intensity_.set(0.5f * limited, init);
}

void TremoloHarmonic::setShape(float shape, bool init) {
    shape_.set(knobOr(0.5f, "shape", shape), init);
}

void TremoloHarmonic::setMode(const std::string& name) {
    if (name != "6G4" && name != "6G4A") TVK_ERROR("unknown mode %s", name.c_str());
    wantedMode_.store(name == "6G4" ? k6G4 : k6G4A, std::memory_order_relaxed);
}

void TremoloHarmonic::reset() {
    for (BlockRamp* control : {&speed_, &intensity_, &shape_})
        control->snapToTarget();
    lfo_.reset();
    delay_.reset();
    for (Channel* channel : {&left_, &right_}) {
        channel->input.reset();
        for (Filters& path : channel->paths)
            path.reset();
    }
}
