#include "algorithms/cabsim/CabSimList.h"

#include <cstring>

#include "algorithms/cabsim/CabinetTable.h"
#include "utility/Log.h"

CabSimList::CabSimList(int blockLength, float sampleRate) {
    networks_["None"] = nullptr;
    for (const CabinetRow& row : cabinetTable())
        networks_[row.id] = row.makeNetwork(blockLength, sampleRate);
}

bool CabSimList::setCabSim(const std::string& name) {
    tvk::log::debug("CabSimList", "%s(%s)", "setCabSim", name.c_str());
    const auto found = networks_.find(name);
    if (found == networks_.end()) return false;
    selected_.store(found->second.get(), std::memory_order_release);
    return true;
}

void CabSimList::process(const float* in, float* out, int count) {
    ICabSim* const selected = selected_.load(std::memory_order_acquire);
    if (selected && selected != running_) selected->reset();
    running_ = selected;
    if (running_)
        running_->process(in, out);
    else
        std::memmove(out, in, static_cast<std::size_t>(count) * sizeof(float));
}
