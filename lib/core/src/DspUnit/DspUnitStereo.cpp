#include "core/DspUnit/DspUnitStereo.h"

#include <utility>

#include "core/DspUnit/BlockGain.h"
#include "core/DspUnit/ClipDetector.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "DspUnitStereo";
constexpr float kMuteTimeConstantSeconds = 0.001f;

}  // namespace

DspUnitStereo::DspUnitStereo(std::string tarvekId, int blockLength, float sampleRate)
    : DspUnit(std::move(tarvekId), 2, 2, blockLength),
      sampleRate_(sampleRate),
      tapTime_("tapTime", PropertySlot(this, &DspUnitStereo::getTapTime, &DspUnitStereo::setTapTime,
                                       &DspUnitStereo::initTapTime)),
      tapTimeBPM_("tapTimeBPM", PropertySlot(this, &DspUnitStereo::getTapTimeBPM,
                                             &DspUnitStereo::setTapTimeBPM, &DspUnitStereo::initTapTimeBPM)),
      clipState_("clipState", PropertySlot(this, &DspUnitStereo::readAndClearClipState,
                                           &DspUnitStereo::setClipState, &DspUnitStereo::initClipState)),
      muteInput_("muteInput", PropertySlot(this, &DspUnitStereo::getMuteInput, &DspUnitStereo::setMuteInput,
                                           &DspUnitStereo::initMuteInput)),
      muteOutput_("muteOutput", PropertySlot(this, &DspUnitStereo::getMuteOutput,
                                             &DspUnitStereo::setMuteOutput, &DspUnitStereo::initMuteOutput)),
      muteInputRamp_(kMuteTimeConstantSeconds, sampleRate),
      muteOutputRamp_(kMuteTimeConstantSeconds, sampleRate),
      gains_(static_cast<std::size_t>(blockLength), 0.0f) {
    addReservedParameter(&clipState_);
    addReservedParameter(&muteInput_);
    addReservedParameter(&muteOutput_);
    addReservedParameter(&tapTime_);
    addReservedParameter(&tapTimeBPM_);
    muteInputRamp_.setTarget(1.0f);
    muteOutputRamp_.setTarget(1.0f);
}

void DspUnitStereo::process() {
    float* const inLeft = getInputAddr(0);
    float* const inRight = getInputAddr(1);
    float* const outLeft = getOutputAddr(0);
    float* const outRight = getOutputAddr(1);
    applyInputMute(inLeft, inRight);
    process(inLeft, inRight, outLeft, outRight);
    applyOutputMute(outLeft, outRight);
    detectOutputClip(outLeft, outRight);
}

void DspUnitStereo::applyInputMute(float* left, float* right) {
    fillGains(muteInputRamp_, gains_.data(), getBlockLength());
    applyGains(left, gains_.data(), getBlockLength());
    applyGains(right, gains_.data(), getBlockLength());
}

void DspUnitStereo::applyOutputMute(float* left, float* right) {
    fillGains(muteOutputRamp_, gains_.data(), getBlockLength());
    applyGains(left, gains_.data(), getBlockLength());
    applyGains(right, gains_.data(), getBlockLength());
}

void DspUnitStereo::detectOutputClip(const float* left, const float* right) {
    detectClip(clipFlag_, left, right, getBlockLength());
}

void DspUnitStereo::setTapTime(float seconds) {
    tapValue_.store(seconds, std::memory_order_relaxed);
}
void DspUnitStereo::initTapTime(float seconds) {
    tapValue_.store(seconds, std::memory_order_relaxed);
}
float DspUnitStereo::getTapTime() const {
    return tapValue_.load(std::memory_order_relaxed);
}
void DspUnitStereo::setTapTimeBPM(float) {}
void DspUnitStereo::initTapTimeBPM(float) {}
float DspUnitStereo::getTapTimeBPM() const {
    return 0.0f;
}

bool DspUnitStereo::readAndClearClipState() {
    return clipFlag_.exchange(false, std::memory_order_relaxed);
}
void DspUnitStereo::setClipState(bool) {
    TVK_WARN("setClipState not implemented");
}
void DspUnitStereo::initClipState(bool) {
    TVK_WARN("initClipState not implemented");
}

void DspUnitStereo::setMuteInput(bool muted) {
    tvk::log::debug(kTag, "MuteInput set, %d", muted);
    muteInputState_.store(muted, std::memory_order_relaxed);
    muteInputRamp_.setTarget(muted ? 0.0f : 1.0f);
}

void DspUnitStereo::initMuteInput(bool muted) {
    tvk::log::debug(kTag, "MuteInput init, %d", muted);
    muteInputState_.store(muted, std::memory_order_relaxed);
    muteInputRamp_.setTarget(muted ? 0.0f : 1.0f);
    muteInputRamp_.snap(0.0f);
}

bool DspUnitStereo::getMuteInput() const {
    return muteInputState_.load(std::memory_order_relaxed);
}

void DspUnitStereo::setMuteOutput(bool muted) {
    tvk::log::debug(kTag, "MuteOutput set, %d", muted);
    muteOutputState_.store(muted, std::memory_order_relaxed);
    muteOutputRamp_.setTarget(muted ? 0.0f : 1.0f);
}

void DspUnitStereo::initMuteOutput(bool muted) {
    tvk::log::debug(kTag, "MuteOutput init, %d", muted);
    muteOutputState_.store(muted, std::memory_order_relaxed);
    muteOutputRamp_.setTarget(muted ? 0.0f : 1.0f);
    muteOutputRamp_.snap(0.0f);
}

bool DspUnitStereo::getMuteOutput() const {
    return muteOutputState_.load(std::memory_order_relaxed);
}
