#include "proj/models/GlobalSettingsModel.h"

#include <climits>
#include <mutex>

#include "GlobalSettingsFile.h"
#include "utility/Exception.h"
#include "utility/Log.h"

namespace tvk {

namespace {

constexpr const char* kTag = "GlobalSettingsModel";
constexpr const char* kFile = "/mnt/user-data/globalSettings.json";

}  // namespace

GlobalSettingsModel::GlobalSettingsModel(Storage& storage) : storage_(storage) {
    load();
}

void GlobalSettingsModel::load() {
    std::string text;
    switch (storage_.load(kFile, text)) {
        case Storage::Load::Absent:
            log::debug(kTag, "Creating global settings database");
            save();
            break;
        case Storage::Load::Unreadable:
            TVK_WARN("Failed to load global settings file.");
            break;
        case Storage::Load::TooLarge:
            TVK_WARN("Failed to load global settings file.");
            save();
            break;
        case Storage::Load::Done:
            if (readGlobalSettings(text, settings_) == GlobalSettingsFile::ToBeSaved) save();
            break;
    }
}

std::uint32_t GlobalSettingsModel::getReverbTaperType() const {
    const std::lock_guard lock(mutex_);
    return settings_.reverbTaperType;
}

bool GlobalSettingsModel::getVibratoChannelBright() const {
    const std::lock_guard lock(mutex_);
    return settings_.vibratoChannelBright;
}

void GlobalSettingsModel::setReverbTaperType(std::uint32_t type) {
    log::debug(kTag, "setReverbTaperType");
    if (type > INT_MAX) TVK_THROW("Invalid argument.");
    {
        const std::lock_guard lock(mutex_);
        settings_.reverbTaperType = type;
    }
    save();
    observers_.forEach([type](GlobalSettingsObserver* observer) {
        observer->reverbTaperTypeChangedHandler(static_cast<int>(type));
    });
}

void GlobalSettingsModel::setVibratoChannelBright(bool isOn) {
    log::debug(kTag, "setVibratoChannelBright");
    {
        const std::lock_guard lock(mutex_);
        settings_.vibratoChannelBright = isOn;
    }
    save();
    observers_.forEach(
        [isOn](GlobalSettingsObserver* observer) { observer->vibratoChannelBrightChangedHandler(isOn); });
}

void GlobalSettingsModel::addObserver(GlobalSettingsObserver& observer) {
    observers_.add(&observer);
}

void GlobalSettingsModel::removeObserver(GlobalSettingsObserver& observer) {
    observers_.removeCallee(&observer);
}

void GlobalSettingsModel::save() {
    GlobalSettings settings;
    Storage::Ticket ticket = 0;
    {
        const std::lock_guard lock(mutex_);
        settings = settings_;
        ticket = storage_.ticket();
    }
    if (!storage_.save(kFile, globalSettingsText(settings), ticket))
        TVK_WARN("Failed to save global settings to disk.");
}

}  // namespace tvk
