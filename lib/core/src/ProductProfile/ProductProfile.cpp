#include "core/ProductProfile/ProductProfile.h"

#include <exception>
#include <fstream>
#include <utility>

#include "ProductProfile/ProfileMenus.h"
#include "core/System/DspArchive.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "ProductProfile";

}  // namespace

ProductProfile::ProductProfile(const std::string& path) {
    std::ifstream file(path);
    if (!file) {
        TVK_WARN("problem reading settings, %s", path.c_str());
        return;
    }
    try {
        DspArchive archive;
        archive.read(file);
        read(archive);
    } catch (const std::exception& error) {
        TVK_WARN("problem reading settings, %s", error.what());
    }
}

void ProductProfile::read(DspArchive& archive) {
    archive.get("productFamily", productFamily_);
    archive.get("inputVoltageMapping", inputVoltageMapping_);
    archive.get("preFxHeadRoomEnable", preFxHeadRoomEnable_);
    archive.get("dreGainDeltaDb", dreGainDeltaDb_);
    archive.get("drePreGainLowGainPath", drePreGainLowGainPath_);
    archive.get("deemphGainDcDb", deemphGainDcDb_);
    archive.get("deemphGainPiDb", deemphGainPiDb_);
    archive.get("deemphF0Hz", deemphF0Hz_);
    archive.get("bluetoothAuxInAttenuationDb", bluetoothAuxInAttenuationDb_);
    archive.get("frontPanelKnobClass", frontPanelKnobClass_);
    archive.get("instrumentGainDb", instrumentGainDb_);
    archive.get("headphonesGainDb", headphonesGainDb_);
    archive.get("limiterAttackTc", limiterAttackTc_);
    archive.get("limiterReleaseTc", limiterReleaseTc_);
    archive.get("limiterThresholdDb", limiterThresholdDb_);
    archive.get("limiterLookaheadSeconds", limiterLookaheadSeconds_);
    archive.get("limiterCrossoverFrequencyHz", limiterCrossoverFrequencyHz_);
    readEffectCategories(archive);
    readAmps(archive);
    globalEq_ = readMenu(archive, "GlobalEQ", "id", "problem with GlobalEQ array item").entries;
    globalFxAssign_ = readAssignments(archive, "globalFxAssign", 3, "problem with GlobalFXAssign array item");
    globalFxAssignRtk7_ =
        readAssignments(archive, "globalFxAssignRtk7", 5, "problem with GlobalFXAssignRtk7 array item");
}

void ProductProfile::readEffectCategories(DspArchive& archive) {
    if (!archive.enterObject("effectCategories")) return;
    for (int i = 0; i < archive.getArraySize(); ++i) {
        archive.enterArrayItem(i);
        FxCategoryData category;
        archive.get("categoryName", category.categoryName);
        archive.get("menuName18Max", category.menuName18Max);
        Menu menu = readMenu(archive, "dspUnits", "TarvekId", "problem with dspUnits array item");
        archive.leaveObject();
        if (!menu.isPresent) {
            TVK_WARN("Effect Categories: dspUnits array not found: %s", category.categoryName.c_str());
            continue;
        }
        category.dspUnits = std::move(menu.entries);
        effectCategories_.push_back(std::move(category));
    }
    archive.leaveObject();
}

void ProductProfile::readAmps(DspArchive& archive) {
    if (!archive.enterObject("amp")) return;
    Menu menu =
        readMenu(archive, "dspUnits", "TarvekId", "problem with Amp getAmpDspUnitFromArchive array item");
    archive.leaveObject();
    if (!menu.isPresent) TVK_WARN("dspUnits array in Amps not found");
    ampDspUnits_ = std::move(menu.entries);
}

void ProductProfile::print() const {
    using tvk::log::debug;
    const auto number = [](const char* format, float value) {
        debug(kTag, format, static_cast<double>(value));
    };
    debug(kTag, "productFamily = %s", productFamily_.c_str());
    number("inputVoltageMapping = %f", inputVoltageMapping_);
    number("dreGainDeltaDb = %f", dreGainDeltaDb_);
    number("drePreGainLowGainPath = %f", drePreGainLowGainPath_);
    number("deemphGainDcDb = %f", deemphGainDcDb_);
    number("deemphGainPiDb = %f", deemphGainPiDb_);
    number("deemphF0Hz = %f", deemphF0Hz_);
    number("bluetoothAuxInAttenuationDb = %f", bluetoothAuxInAttenuationDb_);
    debug(kTag, "frontPanelKnobClass = %s", frontPanelKnobClass_.c_str());
    number("headphonesGainDb = %f", headphonesGainDb_);
    number("instrumentGainDb = %f", instrumentGainDb_);
    number("limiterAttackTc = %f", limiterAttackTc_);
    number("limiterReleaseTc = %f", limiterReleaseTc_);
    number("limiterThresholdDb = %f", limiterThresholdDb_);
    number("limiterLookaheadSeconds = %f", limiterLookaheadSeconds_);
    number("limiterCrossoverFrequencyHz = %f", limiterCrossoverFrequencyHz_);
    for (const FxCategoryData& category : effectCategories_) {
        debug(kTag, "effectCategories: id = %s", category.categoryName.c_str());
    }
    for (const auto& [id, menuName] : globalEq_) {
        debug(kTag, "GlobalEQ: id = %s, menuName18Max = %s", id.c_str(), menuName.c_str());
    }
}
