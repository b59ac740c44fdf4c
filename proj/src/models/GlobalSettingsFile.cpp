#include "GlobalSettingsFile.h"

#include <climits>
#include <nlohmann/json.hpp>

#include "JsonText.h"
#include "utility/EscapedText.h"
#include "utility/Exception.h"
#include "utility/Log.h"

namespace tvk {

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kSchemaVersion = "schemaVersion";
constexpr const char* kReverbTaperType = "reverbTaperType";
constexpr const char* kVibratoChannelBright = "vibratoChannelBright";

// The number of a key, or its default. Through double, whose range the library keeps to, since a number that
// does not fit the wanted type is no error for it.
double numberOf(const Json& json, const char* key, double byDefault) {
    return json.value(key, byDefault);
}

// Schema 0 differs by the missing version alone.
bool migrateGlobalSettings(Json& json) {
    if (numberOf(json, kSchemaVersion, 0.0) >= GlobalSettings::kCurrentSchema) return false;
    json[kSchemaVersion] = GlobalSettings::kCurrentSchema;
    return true;
}

// True when the text was of an older schema.
bool loadGlobalSettings(const std::string& text, GlobalSettings& settings) {
    Json json = parseJson(text);
    if (numberOf(json, kSchemaVersion, 0.0) > GlobalSettings::kCurrentSchema)
        TVK_THROW("Global settings too new - using defaults.");
    const bool isMigrated = migrateGlobalSettings(json);
    GlobalSettings read;
    const double taper = numberOf(json, kReverbTaperType, read.reverbTaperType);
    if (!(taper >= 0.0 && taper <= INT_MAX)) throw std::out_of_range(kReverbTaperType);
    read.reverbTaperType = static_cast<std::uint32_t>(taper);
    read.vibratoChannelBright = json.value(kVibratoChannelBright, read.vibratoChannelBright);
    settings = read;
    return isMigrated;
}

}  // namespace

GlobalSettingsFile readGlobalSettings(const std::string& text, GlobalSettings& settings) {
    settings = {};
    try {
        return loadGlobalSettings(text, settings) ? GlobalSettingsFile::ToBeSaved : GlobalSettingsFile::Kept;
    } catch (const Exception& tooNew) {
        TVK_WARN("%s", tooNew.what());
        return GlobalSettingsFile::Kept;
    } catch (const Json::parse_error& error) {
        TVK_WARN("Failed to load global settings file: %s.", escaped(error.what()).c_str());
    } catch (const std::exception&) {
        TVK_WARN("Failed to load global settings file.");
    }
    return GlobalSettingsFile::ToBeSaved;
}

std::string globalSettingsText(const GlobalSettings& settings) {
    return jsonText({{kSchemaVersion, settings.schemaVersion},
                     {kReverbTaperType, settings.reverbTaperType},
                     {kVibratoChannelBright, settings.vibratoChannelBright}});
}

}  // namespace tvk
