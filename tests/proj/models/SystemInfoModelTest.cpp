#include <thread>

#include "ProductFolders.h"
#include "proj/models/GlobalSettingsModel.h"
#include "proj/models/SystemInfoModel.h"
#include "proj/models/UserIRModel.h"

namespace {

using tvk::SystemInfoModel;

constexpr const char* kVersion = "/home/root/release-version";

class SystemInfoModelTest : public ProductFolders {
protected:
    SystemInfoModelTest() {
        write(kVersion, "2.0.18\n");
        for (const char* name : {"factoryIRs.json", "globalSettings.json", "userCabsimConfig.json",
                                 "userIRs.json", "userIRs/a.wav", "userIRs/b.wav.tmp", "kept.json"})
            write(std::string("/mnt/user-data/") + name, "text");
    }
    // Paths below the user's data.
    Lines left() const {
        Lines found;
        const std::filesystem::path root = place("/mnt/user-data");
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root))
            found.push_back(std::filesystem::relative(entry.path(), root).string());
        std::sort(found.begin(), found.end());
        return found;
    }
};

TEST_F(SystemInfoModelTest, TheVersionIsTheFirstLineAtTheStart) {
    write(kVersion, "2.0.18-rc\nsecond line\n");
    const SystemInfoModel model(storage);
    write(kVersion, "3\n");
    EXPECT_EQ(model.getFirmwareVersion(), "2.0.18-rc");
    EXPECT_EQ(log.lines(), Lines{"SystemInfoModel: getFirmwareVersion()"});
}

TEST_F(SystemInfoModelTest, WithoutItsFileTheVersionIsEmptyWithAWarning) {
    std::filesystem::remove(place(kVersion));
    const SystemInfoModel model(storage);
    EXPECT_EQ(model.getFirmwareVersion(), "");
    EXPECT_EQ(complaints(), Lines{"Warn Failed to read firmware version file: Can't open file '" +
                                  place(kVersion).string() + "' (using mode r+): No such file or directory"});
}

TEST_F(SystemInfoModelTest, AFactoryRestoreDeletesWhatTheUserMadeAndNothingElse) {
    SystemInfoModel model(storage);
    EXPECT_TRUE(model.factoryRestore());
    EXPECT_EQ(left(), (Lines{"kept.json", "userIRs"}));
    EXPECT_EQ(read(kVersion), "2.0.18\n");
}

TEST_F(SystemInfoModelTest, WhatIsNotThereCountsAsDeleted) {
    SystemInfoModel model(storage);
    std::filesystem::remove_all(place("/mnt/user-data/userIRs"));
    EXPECT_TRUE(model.factoryRestore());
    EXPECT_TRUE(model.factoryRestore());
    EXPECT_EQ(left(), Lines{"kept.json"});
    EXPECT_TRUE(complaints().empty());
}

TEST_F(SystemInfoModelTest, ARestoreThatCannotDeleteSaysSo) {
    SystemInfoModel model(storage);
    files.undeletable = "a.wav";
    EXPECT_FALSE(model.factoryRestore());
    EXPECT_EQ(complaints(), Lines{"Warn Failed to factory restore: Error deleting file '" +
                                  place("/mnt/user-data/userIRs/a.wav").string() + "': Input/output error"});
    EXPECT_EQ(left(), (Lines{"kept.json", "userIRs", "userIRs/a.wav", "userIRs/b.wav.tmp"}));
}

TEST_F(SystemInfoModelTest, ANameOfAStrangerIsEscapedInTheWarning) {
    write("/mnt/user-data/userIRs/a\x1B[2J.wav", "text");
    SystemInfoModel model(storage);
    files.undeletable = "[2J.wav";
    EXPECT_FALSE(model.factoryRestore());
    ASSERT_EQ(complaints().size(), 1u);
    EXPECT_NE(complaints()[0].find("a\\x1B[2J.wav"), std::string::npos) << complaints()[0];
}

TEST_F(SystemInfoModelTest, RestoresTakeTurnsAndWhatWasAskedForBeforeDoesNotLandAfterwards) {
    SystemInfoModel model(storage);
    {
        tvk::GlobalSettingsModel settings(storage);
        tvk::UserIRModel userIRs(storage);
        userIRs.moveUserIR(1, 1);
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&] { EXPECT_TRUE(model.factoryRestore()); });
        threads.emplace_back([&] {
            for (unsigned i = 0; i < 20; ++i)
                settings.setReverbTaperType(i);
        });
        threads.emplace_back([&] {
            for (int i = 0; i < 20; ++i)
                try {
                    userIRs.addUserIR("c" + std::to_string(i % 7), "bytes");
                } catch (const tvk::Exception&) {
                    // A restore came between.
                }
        });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_TRUE(model.factoryRestore());
    }
    EXPECT_EQ(left(), (Lines{"kept.json", "userIRs"})) << "not even what was pending when the models ended";
}

}  // namespace
