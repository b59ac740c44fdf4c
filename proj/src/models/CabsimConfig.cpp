#include "CabsimConfig.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "JsonText.h"
#include "proj/models/IRName.h"
#include "utility/EscapedText.h"
#include "utility/Log.h"

namespace tvk {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kSlots = "cabsimIRs";

// Clamped in double precision: a larger number is no float.
float numberAt(const Json& record, const char* key, float lowest, float highest) {
    return static_cast<float>(std::clamp(record.at(key).get<double>(), double{lowest}, double{highest}));
}

CabsimIR slotOf(const Json& record) {
    using Limits = CabsimLimits;
    CabsimIR slot;
    slot.isFactory = record.at("isFactory").get<bool>();
    slot.irName = record.at("irName").get<std::string>();
    slot.isDirty = record.at("isDirty").get<bool>();
    slot.hpf = numberAt(record, "hpf", Limits::kLowestHpfHz, Limits::kHighestHpfHz);
    slot.lpf = numberAt(record, "lpf", Limits::kLowestLpfHz, Limits::kHighestLpfHz);
    slot.level = numberAt(record, "level", Limits::kLowestLevelDb, Limits::kHighestLevelDb);
    if (slot.irName.empty() || isValidIRName(slot.irName)) return slot;
    TVK_WARN("cabsim slot emptied of \"%s\"", escaped(slot.irName).c_str());
    return {};
}

Json recordOf(const CabsimIR& slot) {
    return Json::object({{"isFactory", slot.isFactory},
                         {"irName", slot.irName},
                         {"isDirty", slot.isDirty},
                         {"hpf", slot.hpf},
                         {"lpf", slot.lpf},
                         {"level", slot.level}});
}

}  // namespace

CabsimModel::Slots parseCabsimConfig(const std::string& text) {
    const Json json = parseJson(text);
    const Json& records = json.at(kSlots);
    CabsimModel::Slots slots;
    if (!records.is_array() || records.size() != slots.size())
        throw std::invalid_argument("not as many cabsim slots as there are positions of the switch");
    for (std::size_t i = 0; i < slots.size(); ++i)
        slots[i] = slotOf(records[i]);
    return slots;
}

std::string cabsimConfigText(const CabsimModel::Slots& slots) {
    Json records = Json::array();
    for (const CabsimIR& slot : slots)
        records.push_back(recordOf(slot));
    return jsonText(Json::object({{kSlots, std::move(records)}}));
}

}  // namespace tvk
