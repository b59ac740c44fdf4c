// The text of "globalSettings.json": one object with the keys "schemaVersion", "reverbTaperType" (numbers)
// and "vibratoChannelBright" (bool).
#pragma once

#include <string>

#include "proj/models/GlobalSettings.h"

namespace tvk {

// What is to become of the file that was read.
enum class GlobalSettingsFile { Kept, ToBeSaved };

// Reads a text of the current or an older schema; keys that are missing have their defaults. The settings are
// the defaults, after a warning, where the text is of a newer schema (the file is kept), does not parse, or
// has a value of a wrong type or range.
GlobalSettingsFile readGlobalSettings(const std::string& text, GlobalSettings& settings);

std::string globalSettingsText(const GlobalSettings& settings);

}  // namespace tvk
