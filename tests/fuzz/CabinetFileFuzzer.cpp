// Syncs the cabinet's slots with bytes as the user's file.
//
// Laws: what is no JSON is refused, and a refusal leaves the slots as they were; slots that were taken over
// have names and values that may be, and their files; saved, they sync to the same; the next good file is
// taken over.
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "FuzzedDisk.h"
#include "proj/models/CabsimModel.h"
#include "proj/models/FactoryIRModel.h"
#include "proj/models/GlobalSettingsModel.h"

using tvk::CabsimIR;
using tvk::CabsimModel;

namespace {

struct Cabinet {
    Cabinet() {
        factoryIRs.amplifierChanged(0);
        cabinet.amplifierChanged(0);
    }

    void put(const std::string& text) { REQUIRE(storage.save(fuzzed::kCabinet, text, storage.ticket())); }

    QuietLog quiet;
    DiskModel disk{
        DiskKind::NamesByFolder,
        fuzzed::disk({{fuzzed::kFactoryCatalogue, R"({"factoryIRs": [{"name": "A1"}, {"name": "A2"}]})"}})};
    tvk::Storage storage{disk};
    tvk::FactoryIRModel factoryIRs{fuzzed::engine(), storage};
    tvk::GlobalSettingsModel settings{storage};
    CabsimModel cabinet{fuzzed::engine(), settings, factoryIRs, storage};
};

const char* const kGood = R"({"cabsimIRs": [
    {"isFactory": true, "irName": "A2", "isDirty": false, "hpf": 30, "lpf": 9000, "level": -1},
    {"isFactory": false, "irName": "Room", "isDirty": false, "hpf": 40.5, "lpf": 8000, "level": -2},
    {"isFactory": true, "irName": "None", "isDirty": false, "hpf": 20, "lpf": 20000, "level": -5}]})";

void requireGoodSlots(const Cabinet& amp) {
    using Limits = tvk::CabsimLimits;
    for (const CabsimIR& slot : amp.cabinet.getCabsimIRList()) {
        REQUIRE(slot.hpf == Limits::clampHpf(slot.hpf));
        REQUIRE(slot.lpf == Limits::clampLpf(slot.lpf));
        REQUIRE(slot.level == Limits::clampLevel(slot.level));
        if (slot.irName.empty() || slot.irName == tvk::kNoIR) continue;
        REQUIRE(tvk::isValidIRName(slot.irName));
        const std::string folder =
            slot.isFactory ? "/home/root/factoryIRs/Arvel-SlatePanel-IRs/" : tvk::kUserIRDirectory;
        REQUIRE(!fuzzed::fileOn(amp.disk, folder + slot.irName + ".wav").empty());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Cabinet& amp = *new Cabinet;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const CabsimModel::Slots before = amp.cabinet.getCabsimIRList();
    amp.put(text);
    if (amp.cabinet.syncCurrentState()) {
        REQUIRE(nlohmann::json::accept(text));
        requireGoodSlots(amp);
        REQUIRE(amp.cabinet.saveCurrentState());
        const CabsimModel::Slots saved = amp.cabinet.getCabsimIRList();
        REQUIRE(amp.cabinet.syncCurrentState());
        REQUIRE(amp.cabinet.getCabsimIRList() == saved);
    } else {
        REQUIRE(amp.cabinet.getCabsimIRList() == before);
    }
    amp.put(kGood);
    REQUIRE(amp.cabinet.syncCurrentState());
    REQUIRE(amp.cabinet.getCabsimIRList() ==
            (CabsimModel::Slots{CabsimIR{true, "A2", false, 30, 9000, -1},
                                CabsimIR{false, "Room", false, 40.5f, 8000, -2}, CabsimIR{}}));
    fuzzed::requireNoTemporaries(amp.disk);
    return 0;
}
