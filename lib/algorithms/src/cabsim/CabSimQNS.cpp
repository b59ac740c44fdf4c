#include "algorithms/cabsim/CabSimQNS.h"

#include <algorithm>
#include <cmath>

#include "algorithms/cabsim/IRProcessor.h"
#include "algorithms/cabsim/IRProcessorPool.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "CabSimQNS";
constexpr const char* kNone = "None";
constexpr float kRampSeconds = 0.01f;

void logCall(const char* operation) {
    tvk::log::debug(kTag, "%s()", operation);
}

void warnOfNull(bool isReleased) {
    if (!isReleased) TVK_WARN("Tried to release null IRProcessor object");
}

}  // namespace

CabSimQNS::CabSimQNS(int blockLength, float sampleRate, std::span<const CabinetRow> table)
    : first_(blockLength, sampleRate),
      second_(blockLength, sampleRate),
      blend_(kRampSeconds, sampleRate),
      firstLeft_(static_cast<std::size_t>(blockLength)),
      firstRight_(firstLeft_),
      secondLeft_(firstLeft_),
      secondRight_(firstLeft_) {
    list_[kNone] = nullptr;
    for (const CabinetRow& row : table)
        if (std::unique_ptr<CabSimQNSBase> cabinet = row.makeCabinet(row.response, sampleRate))
            list_[row.id] = std::move(cabinet);
}

CabSimQNS::~CabSimQNS() {
    warnOfNull(first_.giveBack());
    if (cab2Enabled_.load(std::memory_order_relaxed)) warnOfNull(second_.giveBack());
}

void CabSimQNS::initIRProc() {
    logCall("initIRProc");
    takeProcessor(first_, 0, "IRProcessor pointer not available.", "");
}

void CabSimQNS::initIRProcCab2() {
    logCall("initIRProcCab2");
    takeProcessor(second_, 1, "IRProcessor pointer not available for second cab.", " cab 2");
}

void CabSimQNS::takeProcessor(CabinetSlot& slot, std::size_t place, const char* missing, const char* which) {
    if (!IRProcessorPool::isThere()) {
        TVK_WARN("CabSimQNSWarn: %s Make Sure ObjPoolManager has been instantiated with IRProcessor objects",
                 missing);
        return;
    }
    slot.take(IRProcessorPool::take(place));
    if (!slot.hasProcessor())
        TVK_WARN("CabSimQNS: Failed to acquire IRProcessor object from ObjPoolManager%s", which);
}

void CabSimQNS::enableCabSim2() {
    logCall("enableCabSim2");
    if (!second_.hasProcessor()) initIRProcCab2();
    cab2Enabled_.store(second_.hasProcessor(), std::memory_order_relaxed);
}

void CabSimQNS::disableCabSim2() {
    logCall("disableCabSim2");
    cab2Enabled_.store(false, std::memory_order_relaxed);
    warnOfNull(second_.giveBack());
}

void CabSimQNS::setCabSimID(const std::string& name) {
    tvk::log::debug(kTag, "%s(%s)", "setCabSimID", name.c_str());
    select(first_, name);
}

void CabSimQNS::setCabSimIDCab2(const std::string& name) {
    tvk::log::debug(kTag, "%s(%s)", "setCabSimIDCab2", name.c_str());
    select(second_, name);
}

void CabSimQNS::select(CabinetSlot& slot, const std::string& name) {
    const auto found = list_.find(name);
    if (found == list_.end()) {
        TVK_WARN("Cabinet initialized with string not found in CabSimQNS::setCabSimIDList: %s", name.c_str());
        return;
    }
    slot.select(name, found->second ? found->second->getImpulseResponse() : std::span<const float>());
}

void CabSimQNS::setBlend(float blend, bool isInit) {
    if (!std::isfinite(blend)) return;
    const float limited = std::clamp(blend, 0.0f, 1.0f);
    blend_.setTarget(limited);
    if (isInit) blend_.snap(limited);
}

void CabSimQNS::process(const float* inL, const float* inR, float* outL, float* outR) {
    first_.process(inL, inR, firstLeft_.data(), firstRight_.data());
    if (!cab2Enabled_.load(std::memory_order_relaxed)) {
        std::copy(firstLeft_.begin(), firstLeft_.end(), outL);
        std::copy(firstRight_.begin(), firstRight_.end(), outR);
        return;
    }
    second_.process(inL, inR, secondLeft_.data(), secondRight_.data());
    for (std::size_t n = 0; n < firstLeft_.size(); ++n) {
        const float blend = blend_.tick();
        outL[n] = firstLeft_[n] + blend * (secondLeft_[n] - firstLeft_[n]);
        outR[n] = firstRight_[n] + blend * (secondRight_[n] - firstRight_[n]);
    }
}
