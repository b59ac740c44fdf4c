#include "algorithms/cabsim/CabinetSlot.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "algorithms/cabsim/IRProcessor.h"
#include "algorithms/cabsim/IRProcessorPool.h"

namespace {

constexpr float kRampSeconds = 0.01f;

}  // namespace

CabinetSlot::CabinetSlot(int blockLength, float sampleRate)
    : blockLength_(blockLength),
      mono_(static_cast<std::size_t>(blockLength)),
      tone_(sampleRate),
      pan_(kRampSeconds, sampleRate) {}

void CabinetSlot::take(std::shared_ptr<IRProcessor> irProcessor) {
    share_ = std::move(irProcessor);
    stream_.attach(share_.get());
}

bool CabinetSlot::giveBack() {
    isActive_.store(false, std::memory_order_relaxed);
    stream_.detach();
    const bool hadOne = hasProcessor();
    IRProcessorPool::giveBack(std::move(share_));
    return hadOne;
}

void CabinetSlot::select(const std::string& id, std::span<const float> response) {
    cabId_ = id;
    if (response.empty() || !share_) {
        isActive_.store(false, std::memory_order_relaxed);
        stream_.release();
        return;
    }
    stream_.load(response);
    isActive_.store(true, std::memory_order_relaxed);
}

void CabinetSlot::setPan(float pan, bool isInit) {
    if (!std::isfinite(pan)) return;
    const float limited = std::clamp(pan, -1.0f, 1.0f);
    pan_.setTarget(limited);
    if (isInit) pan_.snap(limited);
}

void CabinetSlot::process(const float* inL, const float* inR, float* outL, float* outR) {
    if (!isActive_.load(std::memory_order_relaxed) || !convolve(inL, inR, outL)) {
        tone_.follow(blockLength_);
        std::copy_n(inL, blockLength_, outL);
        std::copy_n(inR, blockLength_, outR);
        return;
    }
    tone_.process(outL, blockLength_);
    for (int n = 0; n < blockLength_; ++n) {
        const float pan = pan_.tick();
        const float cabinet = outL[n];
        outL[n] = cabinet * std::min(1.0f, 1.0f - pan);
        outR[n] = cabinet * std::min(1.0f, 1.0f + pan);
    }
}

bool CabinetSlot::convolve(const float* inL, const float* inR, float* out) {
    for (int n = 0; n < blockLength_; ++n)
        mono_[static_cast<std::size_t>(n)] = (inL[n] + inR[n]) * 0.5f;
    return stream_.process(mono_.data(), out, blockLength_);
}
