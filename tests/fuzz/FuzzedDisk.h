// What the fuzzers of the models stand on: the engine on the tests' sound card, and a disk in memory.
#pragma once

#include <string>

#include "Require.h"
#include "proj/models/powercut/DiskModel.h"
#include "support/card/EngineOnCard.h"

namespace fuzzed {

constexpr const char* kSettings = "/mnt/user-data/globalSettings.json";
constexpr const char* kCabinet = "/mnt/user-data/userCabsimConfig.json";
constexpr const char* kUserCatalogue = "/mnt/user-data/userIRs.json";
constexpr const char* kFactoryCatalogue = "/home/root/factoryIRsArvelSlate.json";

// One for the process. It is not taken down: its threads run until the process ends.
inline Model& engine() {
    static EngineOnCard& engine = *new EngineOnCard;
    return engine.model();
}

// A disk with two responses of the user's, two of the factory's, and the texts that are given.
inline DiskContents disk(DiskContents texts) {
    const std::string factory = "/home/root/factoryIRs/Arvel-SlatePanel-IRs/";
    texts.insert({{"/home/root/", ""},
                  {factory, ""},
                  {factory + "A1.wav", "one"},
                  {factory + "A2.wav", "two"},
                  {"/mnt/user-data/", ""},
                  {"/mnt/user-data/userIRs/", ""},
                  {"/mnt/user-data/userIRs/Hall.wav", "hall"},
                  {"/mnt/user-data/userIRs/Room.wav", "room"}});
    return texts;
}

inline std::string fileOn(const DiskModel& disk, const std::string& path) {
    const DiskContents contents = disk.seen();
    const auto found = contents.find(path);
    return found == contents.end() ? std::string() : found->second;
}

inline void requireNoTemporaries(const DiskModel& disk) {
    for (const auto& [path, content] : disk.seen())
        REQUIRE(!path.ends_with(".tmp"));
}

}  // namespace fuzzed
