// Loads bytes as the file of the global settings.
//
// Laws: what is no JSON gives the defaults and is replaced; whatever is loaded is a setting that may be, the
// file on the disk then loads to the same, and it is the bytes or a text that the model wrote; the next
// setting is stored and loads.
#include <climits>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "FuzzedDisk.h"
#include "proj/models/GlobalSettingsModel.h"

using tvk::GlobalSettingsModel;
using tvk::Storage;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QuietLog quiet;
    const std::string text(reinterpret_cast<const char*>(data), size);
    DiskModel disk(DiskKind::NamesByFolder, {{"/mnt/user-data/", ""}, {fuzzed::kSettings, text}});
    Storage storage(disk);
    GlobalSettingsModel settings(storage);
    const std::uint32_t taper = settings.getReverbTaperType();
    const bool isBright = settings.getVibratoChannelBright();
    REQUIRE(taper <= INT_MAX);
    const std::string kept = fuzzed::fileOn(disk, fuzzed::kSettings);
    if (!nlohmann::json::accept(text)) {
        REQUIRE(taper == 0 && !isBright);
        REQUIRE(kept != text && nlohmann::json::parse(kept).at("schemaVersion") == 1);
    }
    REQUIRE(GlobalSettingsModel(storage).getReverbTaperType() == taper);
    REQUIRE(GlobalSettingsModel(storage).getVibratoChannelBright() == isBright);
    REQUIRE(fuzzed::fileOn(disk, fuzzed::kSettings) == kept);

    settings.setReverbTaperType(taper ^ 1u);
    settings.setVibratoChannelBright(!isBright);
    const GlobalSettingsModel next(storage);
    REQUIRE(next.getReverbTaperType() == (taper ^ 1u));
    REQUIRE(next.getVibratoChannelBright() == !isBright);
    fuzzed::requireNoTemporaries(disk);
    return 0;
}
