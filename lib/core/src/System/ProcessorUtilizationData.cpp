#include "core/System/ProcessorUtilizationData.h"

#include <cmath>
#include <exception>
#include <fstream>
#include <limits>

#include "core/System/DspArchive.h"
#include "utility/Log.h"

namespace {

constexpr char kTag[] = "ProcessorUtilizationData";
constexpr float kMissing = std::numeric_limits<float>::quiet_NaN();

}  // namespace

ProcessorUtilizationData::ProcessorUtilizationData(const std::string& filename) {
    tvk::log::debug(kTag, "reading %s", filename.c_str());
    std::ifstream file(filename);
    if (!file) {
        tvk::log::debug(kTag, "%s not found", filename.c_str());
        return;
    }
    try {
        DspArchive archive;
        archive.read(file);
        read(archive);
    } catch (const std::exception&) {
        TVK_WARN("Problems reading %s", filename.c_str());
    }
}

ProcessorUtilizationData::ProcessorUtilizationData(const DspArchive& archive) {
    DspArchive fromRoot(archive);
    fromRoot.rewind();
    read(fromRoot);
}

void ProcessorUtilizationData::read(DspArchive& archive) {
    float budget = kMissing;
    archive.get("utilizationBudget", budget);
    if (std::isnan(budget)) {
        TVK_WARN("utilizationBudget not found");
    } else {
        utilizationBudget = budget;
        tvk::log::debug(kTag, "utilizationBudget is %f", static_cast<double>(utilizationBudget));
    }
    if (!archive.enterObject("modules")) {
        TVK_WARN("modules array is missing");
        return;
    }
    readModules(archive);
    archive.leaveObject();
}

void ProcessorUtilizationData::readModules(DspArchive& archive) {
    const int count = archive.getArraySize();
    for (int i = 0; i < count; ++i) {
        std::string id;
        float cost = kMissing;
        if (archive.enterArrayItem(i)) {
            archive.get("tarvekId", id);
            archive.get("utilizationPercentage", cost);
            archive.leaveObject();
        }
        if (id.empty() || std::isnan(cost)) {
            TVK_WARN("array item %d is missing", i);
            continue;
        }
        modules[id] = cost;
        tvk::log::debug(kTag, "added %s : %f", id.c_str(), static_cast<double>(cost));
    }
}
