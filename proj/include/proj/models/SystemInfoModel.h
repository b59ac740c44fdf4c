// The firmware's version, and the way back to the state in which the amplifier was shipped.
#pragma once

#include <string>

#include "proj/models/Storage.h"

namespace tvk {

class SystemInfoModel {
public:
    explicit SystemInfoModel(Storage& storage = Storage::machine());

    // First line of "/home/root/release-version" as it was at construction; empty when there was none.
    std::string getFirmwareVersion() const;

    // Deletes all settings, catalogues and user responses; false, after a warning, when something stays. What
    // the models hold in memory stays in force until the next start. Any thread but the audio thread; two at
    // once take turns.
    bool factoryRestore();

private:
    static std::string resolveFirmwareVersion();

    Storage& storage_;
    const std::string firmwareVersion_;
};

}  // namespace tvk
