// The two settings that hold for the whole amplifier, kept in "/mnt/user-data/globalSettings.json".
//
// A file that is not there is created with the defaults. One that cannot be parsed, or with a value of a
// wrong type or range, is replaced by the defaults; one of an older schema is brought up to the current one;
// one of a newer schema, or one that the disk does not give, stays as it is with the defaults in force until
// the next change.
//
// Threads: any but the audio thread. Setters return when the file is written and the observers have been
// told.
#pragma once

#include <cstdint>

#include "proj/models/GlobalSettings.h"
#include "proj/models/GlobalSettingsObserver.h"
#include "proj/models/Storage.h"
#include "utility/CallList.h"
#include "utility/PriorityMutex.h"

namespace tvk {

class GlobalSettingsModel {
public:
    explicit GlobalSettingsModel(Storage& storage = Storage::machine());
    GlobalSettingsModel(const GlobalSettingsModel&) = delete;
    GlobalSettingsModel& operator=(const GlobalSettingsModel&) = delete;

    // Index of the reverb knob's curve.
    std::uint32_t getReverbTaperType() const;
    bool getVibratoChannelBright() const;

    // Store, save, and call each observer. A failed save is a warning; the value is in force all the same.
    // Throws tvk::Exception, with nothing changed, for a type above the largest int.
    void setReverbTaperType(std::uint32_t type);
    void setVibratoChannelBright(bool isOn);

    // An observer removes itself before anything of it goes, with no lock held; the call waits until it is in
    // none of its handlers on another thread.
    void addObserver(GlobalSettingsObserver& observer);
    void removeObserver(GlobalSettingsObserver& observer);

private:
    void load();
    void save();

    Storage& storage_;
    mutable PriorityMutex mutex_;  // on settings_
    GlobalSettings settings_;
    CallList<GlobalSettingsObserver*> observers_;
};

}  // namespace tvk
