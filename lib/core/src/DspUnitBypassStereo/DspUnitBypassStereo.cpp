#include "core/DspUnitBypassStereo/DspUnitBypassStereo.h"

#include <algorithm>
#include <utility>

#include "core/DspUnit/BlockGain.h"
#include "core/System/DspArchive.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "DspUnitBypassStereo";
constexpr float kBypassTimeConstantSeconds = 0.001f;

}  // namespace

DspUnitBypassStereo::DspUnitBypassStereo(std::string tarvekId, int blockLength, float sampleRate)
    : DspUnitStereo(std::move(tarvekId), blockLength, sampleRate),
      bypassRamp_(kBypassTimeConstantSeconds, sampleRate),
      bypass_("bypass", PropertySlot(this, &DspUnitBypassStereo::getBypass, &DspUnitBypassStereo::setBypass,
                                     &DspUnitBypassStereo::initBypass)),
      bypassType_("bypassType",
                  PropertySlot(this, &DspUnitBypassStereo::getBypassType, &DspUnitBypassStereo::setBypassType,
                               &DspUnitBypassStereo::initBypassType)),
      wetLeft_(static_cast<std::size_t>(blockLength), 0.0f),
      wetRight_(wetLeft_),
      wetGain_(wetLeft_),
      dryGain_(wetLeft_) {
    addReservedParameter(&bypass_);
    addReservedParameter(&bypassType_);
    bypassRamp_.setTarget(1.0f);
}

void DspUnitBypassStereo::process() {
    const int length = getBlockLength();
    const int mode = bypassMode_.load(std::memory_order_relaxed);
    float* const inLeft = getInputAddr(0);
    float* const inRight = getInputAddr(1);
    float* const outLeft = getOutputAddr(0);
    float* const outRight = getOutputAddr(1);

    applyInputMute(inLeft, inRight);
    fillGains(bypassRamp_, wetGain_.data(), length);
    for (int n = 0; n < length; ++n)
        dryGain_[n] = 1.0f - wetGain_[n];

    std::copy_n(inLeft, length, wetLeft_.data());
    std::copy_n(inRight, length, wetRight_.data());
    if (mode != kPostNoPreKill) {
        applyGains(wetLeft_.data(), wetGain_.data(), length);
        applyGains(wetRight_.data(), wetGain_.data(), length);
    }

    process(wetLeft_.data(), wetRight_.data(), wetLeft_.data(), wetRight_.data());

    if (mode != kPre || isGloballyBypassed()) {
        applyGains(wetLeft_.data(), wetGain_.data(), length);
        applyGains(wetRight_.data(), wetGain_.data(), length);
    }
    for (int n = 0; n < length; ++n)
        outLeft[n] = dryGain_[n] * inLeft[n] + wetLeft_[n];
    for (int n = 0; n < length; ++n)
        outRight[n] = dryGain_[n] * inRight[n] + wetRight_[n];

    applyOutputMute(outLeft, outRight);
    detectOutputClip(outLeft, outRight);
}

void DspUnitBypassStereo::init(DspArchive& archive) {
    bool bypassed = bypass_.get();
    archive.get("bypass", bypassed);
    bypass_.init(bypassed);
    bypass_.notify();

    std::string type = bypassType_.get();
    archive.get("bypassType", type);
    bypassType_.init(type);
    bypassType_.notify();

    initDerived(archive);
}

void DspUnitBypassStereo::getArchive(DspArchive& archive) {
    archive.set("bypass", bypass_.get());
    archive.set("bypassType", bypassType_.get());
    getArchiveDerived(archive);
}

void DspUnitBypassStereo::setBypass(bool bypassed) {
    tvk::log::debug(kTag, "Bypass set, %d", bypassed);
    bypassState_.store(bypassed, std::memory_order_relaxed);
    bypassRamp_.setTarget(bypassed || isGloballyBypassed() ? 0.0f : 1.0f);
}

void DspUnitBypassStereo::initBypass(bool bypassed) {
    tvk::log::debug(kTag, "Bypass init, %d", bypassed);
    bypassState_.store(bypassed, std::memory_order_relaxed);
    const float gain = bypassed || isGloballyBypassed() ? 0.0f : 1.0f;
    bypassRamp_.setTarget(gain);
    bypassRamp_.snap(gain);
}

void DspUnitBypassStereo::setGlobalFxBypass(bool bypassed) {
    tvk::log::debug(kTag, "setGlobalFxBypass(%d)", bypassed);
    globalFxBypass_.store(bypassed, std::memory_order_relaxed);
    bypassRamp_.setTarget(bypassed || getBypass() ? 0.0f : 1.0f);
}

void DspUnitBypassStereo::setBypassType(const std::string& name) {
    tvk::log::debug(kTag, "BypassType set, %s", name.c_str());
    applyBypassType(name);
}

void DspUnitBypassStereo::initBypassType(const std::string& name) {
    tvk::log::debug(kTag, "BypassType init, %s", name.c_str());
    applyBypassType(name);
}

void DspUnitBypassStereo::applyBypassType(const std::string& name) {
    bypassTypeName_ = name;
    BypassMode mode = kPost;
    if (name == "Pre") {
        mode = kPre;
    } else if (name == "PostNoPreKill") {
        mode = kPostNoPreKill;
    } else if (name != "Post") {
        TVK_WARN("invalid type, defaulting to Post");
    }
    bypassMode_.store(mode, std::memory_order_relaxed);
}

float DspUnitBypassStereo::getDspUnitImpedance(int channel) const {
    tvk::log::debug(kTag, "getDspUnitImpedance: (%i) Default value", channel);
    return 1000000.0f;
}

float DspUnitBypassStereo::getDspUnitCapacitance() const {
    constexpr float capacitance = 0.01f;
    tvk::log::debug(kTag, "getDspUnitCapacitance: (%f) Default value", static_cast<double>(capacitance));
    return capacitance;
}
