// Loads bytes as the catalogue of the user's responses and as that of the factory's.
//
// Laws: what is no JSON gives the files of the folder, and nothing of the factory's; names are valid and come
// once, no more than 50 of them, and of the user's each says whether its file is there; the next upload goes
// into the catalogue, which then loads to the same; the next good catalogue loads.
#include <algorithm>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "FuzzedDisk.h"
#include "proj/models/FactoryIRModel.h"
#include "proj/models/IRName.h"
#include "proj/models/UserIRModel.h"

using tvk::UserIR;
using tvk::UserIRModel;

namespace {

using Records = std::vector<UserIR>;

// Loads the factory's catalogue of the disk.
std::vector<std::string> factoryListOf(tvk::Storage& storage) {
    tvk::FactoryIRModel model(fuzzed::engine(), storage);
    model.amplifierChanged(0);
    return model.getFactoryIRList();
}

void requireGoodRecords(const Records& records, const DiskModel& disk) {
    REQUIRE(records.size() <= UserIRModel::kMaxUserIRs);
    std::set<std::string> names;
    for (const UserIR& record : records) {
        REQUIRE(tvk::isValidUserIRName(record.name));
        REQUIRE(names.insert(record.name).second);
        REQUIRE(record.exists ==
                !fuzzed::fileOn(disk, UserIRModel::getUserIRFilePath(record.name) + ".wav").empty());
    }
    if (records.size() == UserIRModel::kMaxUserIRs) return;
    REQUIRE(names.count("Hall") == 1 && names.count("Room") == 1);
}

// The list after one more upload, or as it was when there is no room.
Records upload(tvk::Storage& storage) {
    UserIRModel model(storage);
    try {
        model.addUserIR("next", "bytes");
    } catch (const tvk::UserIRListFull&) {
        model.moveUserIR(1, 2);
    }
    return model.getUserIRList();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QuietLog quiet;
    const std::string text(reinterpret_cast<const char*>(data), size);
    DiskModel disk(DiskKind::NamesByFolder,
                   fuzzed::disk({{fuzzed::kUserCatalogue, text}, {fuzzed::kFactoryCatalogue, text}}));
    tvk::Storage storage(disk);
    const std::vector<std::string> factory = factoryListOf(storage);
    const Records loaded = UserIRModel(storage).getUserIRList();
    if (!nlohmann::json::accept(text)) {
        REQUIRE(factory.empty());
        REQUIRE(loaded == (Records{{"Hall", true}, {"Room", true}}));
    }
    REQUIRE(std::all_of(factory.begin(), factory.end(), tvk::isValidIRName));
    REQUIRE(std::set<std::string>(factory.begin(), factory.end()).size() == factory.size());
    requireGoodRecords(loaded, disk);

    const Records after = upload(storage);
    requireGoodRecords(after, disk);
    REQUIRE(UserIRModel(storage).getUserIRList() == after);

    const char* const good = R"({"userIRs": [{"name": "Room", "exists": true}],
                                "factoryIRs": [{"name": "A2"}, {"name": "A1"}]})";
    REQUIRE(storage.save(fuzzed::kUserCatalogue, good, storage.ticket()));
    REQUIRE(storage.save(fuzzed::kFactoryCatalogue, good, storage.ticket()));
    REQUIRE(factoryListOf(storage) == (std::vector<std::string>{"A2", "A1"}));
    REQUIRE(UserIRModel(storage).getUserIRList().front() == (UserIR{"Room", true}));
    fuzzed::requireNoTemporaries(disk);
    return 0;
}
