#include "core/System/ProcessorUtilizationManager.h"

#include <algorithm>
#include <cmath>

#include "core/System/DspArchive.h"
#include "utility/Exception.h"
#include "utility/Log.h"

namespace {

constexpr char kTag[] = "ProcessorUtilizationManager";
constexpr float kUnknownCost = 20.0f;

}  // namespace

float ProcessorUtilizationManager::getCost(const std::string& tarvekId) const {
    const auto found = modules.find(tarvekId);
    if (found != modules.end()) return found->second;
    tvk::log::debug(kTag, "tarvekId not known, %s", tarvekId.c_str());
    return kUnknownCost;
}

float ProcessorUtilizationManager::getRemaining() const {
    return std::max(utilizationBudget - used, 0.0f);
}

bool ProcessorUtilizationManager::fits(float sum) const {
    return std::round(sum) <= utilizationBudget;
}

bool ProcessorUtilizationManager::tryAdd(const std::string& tarvekId) {
    const float sum = getCost(tarvekId) + used;
    if (!fits(sum)) return false;
    used = sum;
    return true;
}

bool ProcessorUtilizationManager::checkPreset(DspArchive& archive) {
    float sum = 0.0f;
    if (archive.enterObject("audioGraph")) {
        sum += sumNodes(archive);
        sum += sumGroups(archive, "guitarNodes", "No node in this guitar group.");
        sum += sumGroups(archive, "micNodes", "No node in this mic group.");
        archive.leaveObject();
    }
    used = sum;
    if (fits(sum)) return true;
    TVK_WARN("Preset is over budget at %3.1f%%\n", static_cast<double>(sum));
    return false;
}

float ProcessorUtilizationManager::sumNodes(DspArchive& archive) const {
    float sum = 0.0f;
    if (!archive.enterObject("nodes")) return sum;
    const int count = archive.getArraySize();
    for (int i = 0; i < count; ++i) {
        if (!archive.enterArrayItem(i)) continue;
        std::string id;
        archive.get("TarvekId", id);
        sum += getCost(id);
        archive.leaveObject();
    }
    archive.leaveObject();
    return sum;
}

float ProcessorUtilizationManager::sumGroups(DspArchive& archive, const char* key,
                                             const char* emptyGroupText) const {
    float sum = 0.0f;
    if (!archive.enterObject(key)) return sum;
    for (unsigned group = 0; archive.enterObject(tvk::formatText("%u", group)); ++group) {
        std::string id;
        if (archive.enterObject("group")) {
            const int count = archive.getArraySize();
            for (int i = 0; i < count && id.empty(); ++i) {
                if (!archive.enterArrayItem(i)) continue;
                archive.get("TarvekId", id);
                archive.leaveObject();
            }
            archive.leaveObject();
        }
        if (id.empty())
            tvk::log::debug(kTag, "%s", emptyGroupText);
        else
            sum += getCost(id);
        archive.leaveObject();
    }
    archive.leaveObject();
    return sum;
}
