// The three numbers of a slot. They differ by their field, their limits and their words.
#include <cmath>

#include "proj/models/CabsimModel.h"
#include "proj/models/Model.h"
#include "utility/Log.h"

namespace tvk {

struct CabsimModel::Value {
    const char* name;  // as it stands in the log
    float CabsimIR::*field;
    float (*clamp)(float);
    void (Model::*toEngine)(float);

    static const Value kHpf, kLpf, kLevel;
};

const CabsimModel::Value CabsimModel::Value::kHpf{"HPF", &CabsimIR::hpf, CabsimLimits::clampHpf,
                                                  &Model::setCabsimHPF};
const CabsimModel::Value CabsimModel::Value::kLpf{"LPF", &CabsimIR::lpf, CabsimLimits::clampLpf,
                                                  &Model::setCabsimLPF};
const CabsimModel::Value CabsimModel::Value::kLevel{"level", &CabsimIR::level, CabsimLimits::clampLevel,
                                                    &Model::setCabsimLevel};

float CabsimModel::getCabHPF(std::uint32_t slot) const {
    return getValue(slot, Value::kHpf);
}

float CabsimModel::getCabLPF(std::uint32_t slot) const {
    return getValue(slot, Value::kLpf);
}

float CabsimModel::getCabLevel(std::uint32_t slot) const {
    return getValue(slot, Value::kLevel);
}

bool CabsimModel::setCabHPF(std::uint32_t slot, float hz) {
    return setValue(slot, Value::kHpf, hz);
}

bool CabsimModel::setCabLPF(std::uint32_t slot, float hz) {
    return setValue(slot, Value::kLpf, hz);
}

bool CabsimModel::setCabLevel(std::uint32_t slot, float db) {
    return setValue(slot, Value::kLevel, db);
}

float CabsimModel::getValue(std::uint32_t slot, const Value& value) const {
    if (slot < kSlots) return getCabsimIRList()[slot].*value.field;
    TVK_WARN("Failed to get cab %s for selection %d, returning default value", value.name,
             static_cast<int>(slot));
    return CabsimIR{}.*value.field;
}

bool CabsimModel::setValue(std::uint32_t slot, const Value& value, float number) {
    if (slot >= kSlots || std::isnan(number)) {
        TVK_WARN("Failed to set cab %s for selection %d", value.name, static_cast<int>(slot));
        return false;
    }
    const ApplyLock applying = lockApply();
    const float stored = value.clamp(number);
    {
        const std::unique_lock lock(slotsMutex_);
        slots_[slot].*value.field = stored;
        slots_[slot].isDirty = true;
    }
    if (slot == getVirtualCabsim())
        (model_.*value.toEngine)(stored);
    else
        TVK_WARN("Setting %s for cabsim that is not loaded.", value.name);
    return true;
}

}  // namespace tvk
