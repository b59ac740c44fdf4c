#include "algorithms/cabsim/IRBase.h"

#include <cstring>

#include "utility/Log.h"
#include "utility/ProductPaths.h"

namespace {

constexpr const char* kTag = "IRBase";
constexpr const char* kExtension = ".wav";

bool isNone(const std::string& name) {
    return name == "None" || name == "none";
}

void logSetting(const char* operation, float value, bool isInit) {
    tvk::log::debug(kTag, "%s(%f, %s)", operation, value, isInit ? "true" : "false");
}

void copyBlock(const float* in, float* out, int n) {
    std::memmove(out, in, static_cast<std::size_t>(n) * sizeof(float));
}

}  // namespace

IRBase::IRBase(int blockLength, float sampleRate, IRProcessor* irProcessor)
    : blockLength_(blockLength),
      monoBuffer_(static_cast<std::size_t>(blockLength)),
      stream_(irProcessor),
      tone_(sampleRate) {}

void IRBase::setFile(const std::string& name) {
    tvk::log::debug(kTag, "%s(%s)", "setFile", name.c_str());
    fileName_ = name;
    if (isNone(name)) {
        irActive_.store(false, std::memory_order_relaxed);
        stream_.release();
        return;
    }
    const bool isLoaded = load();
    irActive_.store(isLoaded, std::memory_order_relaxed);
    if (!isLoaded) TVK_WARN("IRBase: Failed to load IR");
}

std::string IRBase::path() const {
    const bool isPath = !fileName_.empty() && fileName_.front() == '/';
    return (isPath ? fileName_ : directory_ + fileName_) + kExtension;
}

bool IRBase::load() {
    const std::string file = path();
    if (!stream_.isAttached()) {
        TVK_WARN("IRBase: irProc not initialized");
        return false;
    }
    if (fileName_.empty()) tvk::log::debug(kTag, "Loading empty Ir file. \n");
    if (!stream_.load(tvk::ProductPaths::resolve(file))) {
        TVK_WARN("IRBase: No IR found: %s\n", file.c_str());
        return false;
    }
    tvk::log::debug(kTag, "Successfully Loaded: %s\n", file.c_str());
    return true;
}

void IRBase::setHPF(float hz, bool isInit) {
    logSetting("setHPF", hz, isInit);
    tone_.setHPF(hz, isInit);
}

void IRBase::setLPF(float hz, bool isInit) {
    logSetting("setLPF", hz, isInit);
    tone_.setLPF(hz, isInit);
}

void IRBase::setOutputLevel(float db, bool isInit) {
    logSetting("setOutputLevel", db, isInit);
    tone_.setOutputLevel(db, isInit);
}

void IRBase::process(const float* inL, const float* inR, float* outL, float* outR) {
    if (processCabinet(inL, inR, outL))
        copyBlock(outL, outR, blockLength_);
    else
        passDry(inL, inR, outL, outR);
}

bool IRBase::processCabinet(const float* inL, const float* inR, float* outL) {
    const bool isWet = isIRActive() && convolve(inL, inR, outL);
    if (isWet)
        tone_.process(outL, blockLength_);
    else
        tone_.follow(blockLength_);
    return isWet;
}

bool IRBase::convolve(const float* inL, const float* inR, float* out) {
    for (int n = 0; n < blockLength_; ++n)
        monoBuffer_[static_cast<std::size_t>(n)] = (inL[n] + inR[n]) * 0.5f;
    return stream_.process(monoBuffer_.data(), out, blockLength_);
}

void IRBase::passDry(const float* inL, const float* inR, float* outL, float* outR) const {
    copyBlock(inL, outL, blockLength_);
    copyBlock(inR, outR, blockLength_);
}
