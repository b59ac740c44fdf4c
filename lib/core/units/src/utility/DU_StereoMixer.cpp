#include "core/units/utility/DU_StereoMixer.h"

#include <utility>

#include "core/DspUnit/BlockGain.h"
#include "core/DspUnit/ClipDetector.h"
#include "core/System/DspArchive.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "DspUnitAmp";
constexpr float kMixTimeConstantSeconds = 0.01f;

}  // namespace

DU_StereoMixer::DU_StereoMixer(std::string tarvekId, int blockLength, float sampleRate)
    : DspUnit(std::move(tarvekId), 4, 2, blockLength),
      ramp_(kMixTimeConstantSeconds, sampleRate),
      mix_("mix",
           PropertySlot(this, &DU_StereoMixer::getMix, &DU_StereoMixer::setMix, &DU_StereoMixer::initMix)),
      gains_(static_cast<std::size_t>(blockLength), 0.0f) {
    addParameter(&mix_);
    ramp_.setTarget(0.5f);
}

void DU_StereoMixer::process() {
    fillGains(ramp_, gains_.data(), getBlockLength());
    for (int channel = 0; channel < 2; ++channel) {
        const float* const first = getInputAddr(channel);
        const float* const second = getInputAddr(channel + 2);
        float* const out = getOutputAddr(channel);
        for (int n = 0; n < getBlockLength(); ++n) {
            out[n] = (1.0f - gains_[n]) * second[n] + gains_[n] * first[n];
        }
    }
    detectClip(clipFlag_, getOutputAddr(0), getOutputAddr(1), getBlockLength());
}

void DU_StereoMixer::init(DspArchive& archive) {
    float mix = mix_.get();
    archive.get("mix", mix);
    mix_.init(mix);
    mix_.notify();
}

void DU_StereoMixer::getArchive(DspArchive& archive) {
    archive.set("mix", mix_.get());
}

bool DU_StereoMixer::readAndClearClipFlag() {
    return clipFlag_.exchange(false, std::memory_order_relaxed);
}

void DU_StereoMixer::setMix(float mix) {
    tvk::log::debug(kTag, "Mix set, %f", static_cast<double>(mix));
    ramp_.setTarget(mix);
}

void DU_StereoMixer::initMix(float mix) {
    tvk::log::debug(kTag, "Mix init, %f", static_cast<double>(mix));
    setMix(mix);
    ramp_.snap(mix);
}
