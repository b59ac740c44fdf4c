#include "math/ConstFractDelay.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "utility/Log.h"

namespace {

using Lanes = float __attribute__((vector_size(16)));

Lanes load(const float* samples) {
    Lanes lanes;
    std::memcpy(&lanes, samples, sizeof lanes);
    return lanes;
}

}  // namespace

ConstFractDelay::ConstFractDelay(int maxDelaySamples, int tapCount)
    // The longest tap's older sample, and the place that a block's first sample goes to.
    : size_(std::max(maxDelaySamples, 1) + 2),
      line_(static_cast<std::size_t>(size_) + 1),
      taps_(static_cast<std::size_t>(std::max(tapCount, 0)), Tap{2, 0.0f, 1.0f, 0.0f, 0.0f, 1.0f, nullptr}),
      maxDelaySamples_(std::max(maxDelaySamples, 1)) {}

bool ConstFractDelay::isTap(int index) const {
    if (index >= 0 && index < static_cast<int>(taps_.size())) return true;
    TVK_ERROR("requested tap index out of range.");
    return false;
}

void ConstFractDelay::setTap(int index, double delaySamples) {
    if (!isTap(index)) return;
    if (!(delaySamples >= 0.0 && delaySamples <= maxDelaySamples_)) {
        TVK_ERROR("invalid tap size, greater than requested max delay.");
        return;
    }
    // The newest sample lies one before the write index, and the older sample of the pair one further back.
    const double whole = std::floor(delaySamples);
    Tap& tap = taps_[static_cast<std::size_t>(index)];
    tap.distance = static_cast<int>(whole) + 2;
    tap.olderWeight = static_cast<float>(delaySamples - whole);
    tap.delaySamples = static_cast<float>(delaySamples);
    weigh(tap);
}

void ConstFractDelay::weigh(Tap& tap) {
    tap.olderGain = tap.gain * tap.olderWeight;
    tap.newerGain = tap.gain - tap.olderGain;
}

float ConstFractDelay::getTap(int index) const {
    return isTap(index) ? taps_[static_cast<std::size_t>(index)].delaySamples : 0.0f;
}

void ConstFractDelay::setTapGain(int index, float gain) {
    if (!isTap(index)) return;
    Tap& tap = taps_[static_cast<std::size_t>(index)];
    tap.gain = gain;
    weigh(tap);
}

void ConstFractDelay::setFeedback(float feedback) {
    tvk::log::debug("ConstFractDelay", "Is this right? See ConstFractDelay::setFeedback.");
    feedback_ = feedback;
}

int ConstFractDelay::indexOf(const Tap& tap) const {
    int index = writeIndex_ - tap.distance;
    while (index < 0)
        index += size_;
    return index;
}

void ConstFractDelay::write(float sample) {
    line_[static_cast<std::size_t>(writeIndex_)] = sample;
    if (writeIndex_ == 0) line_.back() = sample;
    if (++writeIndex_ == size_) writeIndex_ = 0;
}

float ConstFractDelay::read(int index) const {
    if (!isTap(index)) return 0.0f;
    const Tap& tap = taps_[static_cast<std::size_t>(index)];
    const float* pair = line_.data() + indexOf(tap);
    return pair[1] + tap.olderWeight * (pair[0] - pair[1]);
}

// How many of the wanted samples can be read at once: until a head meets the end of the ring or a tap the
// first sample that this run writes.
int ConstFractDelay::runLength(int wanted) const {
    int run = std::min(wanted, size_ - writeIndex_);
    for (const Tap& tap : taps_)
        run = std::min({run, size_ - indexOf(tap), tap.distance - 1});
    return run;
}

void ConstFractDelay::process(const float* in, float* out, int count) {
    while (count > 0) {
        const int run = runLength(count);
        for (Tap& tap : taps_)
            tap.head = line_.data() + indexOf(tap);
        int n = 0;
        for (; n + 4 <= run; n += 4) {
            Lanes sum{};
            for (const Tap& tap : taps_)
                sum += tap.olderGain * load(tap.head + n) + tap.newerGain * load(tap.head + n + 1);
            std::memcpy(out + n, &sum, sizeof sum);
        }
        for (; n < run; ++n) {
            out[n] = 0.0f;
            for (const Tap& tap : taps_)
                out[n] += tap.olderGain * tap.head[n] + tap.newerGain * tap.head[n + 1];
        }
        float* line = line_.data() + writeIndex_;
        const float feedback = feedback_;
        for (n = 0; n < run; ++n)
            line[n] = in[n] + feedback * out[n];
        line_.back() = line_.front();
        writeIndex_ = writeIndex_ + run == size_ ? 0 : writeIndex_ + run;
        in += run;
        out += run;
        count -= run;
    }
}

void ConstFractDelay::clear() {
    std::fill(line_.begin(), line_.end(), 0.0f);
}
