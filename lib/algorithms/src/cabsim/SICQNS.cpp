#include "algorithms/cabsim/SICQNS.h"

#include <algorithm>

#include "utility/Log.h"

namespace {

constexpr const char* kTag = "SICQNS";
constexpr const char* kNone = "None";

}  // namespace

SICQNS::SICQNS(int blockLength, float sampleRate, const std::string& sicId, std::span<const CabinetRow> table)
    : blockLength_(blockLength), monoBuffer_(static_cast<std::size_t>(blockLength)) {
    bool isComplete = true;
    for (const CabinetRow& row : table) {
        std::unique_ptr<SICQNSBase> curve = row.makeCurve(blockLength, sampleRate);
        isComplete = isComplete && curve;
        if (curve) curves_[row.id] = std::move(curve);
    }
    if (!isComplete) tvk::log::debug(kTag, "SICQNS: Not All Speakers Initialized");
    if (!select(sicId))
        TVK_ERROR("Cabinet initialized with string not found in CabSimQNS::setCabSimIDList: %s",
                  sicId.c_str());
}

void SICQNS::setSICID(const std::string& name) {
    tvk::log::debug(kTag, "%s(%s)", "setSICID", name.c_str());
    if (!select(name))
        TVK_ERROR("Invalid SIC string. Double check input string against those in SICQNS::setSICIDList: %s",
                  name.c_str());
}

bool SICQNS::select(const std::string& name) {
    const auto found = curves_.find(name);
    const bool isKnown = found != curves_.end();
    active_.store(isKnown ? found->second.get() : nullptr, std::memory_order_release);
    sicId_ = isKnown ? name : kNone;
    return isKnown || name == kNone;
}

void SICQNS::process(const float* inL, const float* inR, float* outL, float* outR) {
    float* const mono = monoBuffer_.data();
    for (int n = 0; n < blockLength_; ++n)
        mono[n] = (inL[n] + inR[n]) * 0.5f;
    if (SICQNSBase* const curve = active_.load(std::memory_order_acquire)) curve->process(mono, mono);
    std::copy_n(mono, blockLength_, outL);
    std::copy_n(mono, blockLength_, outR);
}
