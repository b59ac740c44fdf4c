#include <nlohmann/json.hpp>

#include "ProductFolders.h"
#include "proj/models/IRName.h"
#include "proj/models/UserIRModel.h"

namespace {

using tvk::UserIR;
using tvk::UserIRModel;
namespace fs = std::filesystem;

constexpr const char* kCatalogue = "/mnt/user-data/userIRs.json";

std::string fileOf(const std::string& name) {
    return "/mnt/user-data/userIRs/" + name + ".wav";
}

class UserIRModelTest : public ProductFolders {
protected:
    // "name" for a record with its file, "name (missing)" for one without.
    static Lines listOf(const UserIRModel& model) {
        Lines names;
        for (const UserIR& record : model.getUserIRList())
            names.push_back(record.name + (record.exists ? "" : " (missing)"));
        return names;
    }
    Lines listAfterStart() { return listOf(UserIRModel(storage)); }
    // The catalogue on the disk.
    static Lines saved() {
        Lines names;
        const nlohmann::json json = nlohmann::json::parse(read(kCatalogue));
        for (const auto& record : json.at("userIRs"))
            names.push_back(record.at("name").get<std::string>() +
                            (record.at("exists").get<bool>() ? "" : " (missing)"));
        return names;
    }
    static std::string refusalOf(const std::function<void()>& call) {
        try {
            call();
        } catch (const tvk::Exception& refusal) {
            return refusal.what();
        }
        return "(none)";
    }
    void addAll(UserIRModel& model, const Lines& names) {
        for (const std::string& name : names)
            model.addUserIR(name, "bytes of " + name);
    }
};

TEST_F(UserIRModelTest, AFreshAmplifierHasNoneAndSaysNothing) {
    EXPECT_TRUE(listAfterStart().empty());
    EXPECT_TRUE(complaints().empty());
    EXPECT_TRUE(log.has("UserIRModel: syncUserIRDatabase"));
    EXPECT_FALSE(exists(kCatalogue)) << "nothing is written at a start";
}

TEST_F(UserIRModelTest, AnUploadIsAFileUnderItsNameAndTheLastRecord) {
    {
        UserIRModel model(storage);
        const std::string bytes("RIFF\0\xFF\n", 7);
        model.addUserIR("Room", bytes);
        EXPECT_EQ(read(fileOf("Room")), bytes);
        model.addUserIR("Hall.wav", "anything");
        EXPECT_EQ(read(fileOf("Hall.wav")), "anything");
        EXPECT_EQ(listOf(model), (Lines{"Room", "Hall.wav"}));
        EXPECT_EQ(model.getUserIRFilePath("Room"), "/mnt/user-data/userIRs/Room");
    }
    EXPECT_EQ(saved(), (Lines{"Room", "Hall.wav"}));
    EXPECT_EQ(listAfterStart(), (Lines{"Room", "Hall.wav"}));
    EXPECT_TRUE(complaints().empty());
}

TEST_F(UserIRModelTest, ASecondUploadOfANameReplacesTheFileAndKeepsTheRecordsPlace) {
    UserIRModel model(storage);
    addAll(model, {"a", "b"});
    model.addUserIR("a", "other");
    EXPECT_EQ(listOf(model), (Lines{"a", "b"}));
    EXPECT_EQ(read(fileOf("a")), "other");
}

TEST_F(UserIRModelTest, AnUploadBringsBackAFileThatHadVanished) {
    UserIRModel model(storage);
    addAll(model, {"a"});
    fs::remove(place(fileOf("a")));
    model.syncUserIRDatabase();
    EXPECT_EQ(listOf(model), Lines{"a (missing)"});
    model.addUserIR("a", "again");
    EXPECT_EQ(listOf(model), Lines{"a"});
}

TEST_F(UserIRModelTest, NamesThatMayNotBeAndNoDataAreRefused) {
    UserIRModel model(storage);
    for (const std::string& name : {std::string(), std::string("."), std::string(".."), std::string("../x"),
                                    std::string("a/b"), std::string("a\nb"), std::string("a\0b", 3),
                                    std::string("None"), std::string("none"), std::string(248, 'x')})
        EXPECT_THROW(model.addUserIR(name, "bytes"), tvk::Exception) << name;
    EXPECT_THROW(model.addUserIR("a", ""), tvk::Exception);
    EXPECT_TRUE(listOf(model).empty());
    EXPECT_FALSE(exists("/mnt/user-data/userIRs"));
    EXPECT_FALSE(exists("/mnt/user-data/x.wav"));
    EXPECT_EQ(refusalOf([&] { model.addUserIR("a\x1B", "bytes"); }), "\"a\\x1B\" is no name for an IR.");
}

TEST_F(UserIRModelTest, TheLongestNameIsStoredAndFoundAgain) {
    const std::string name(247, 'n');
    {
        UserIRModel model(storage);
        model.addUserIR(name, "bytes");
    }
    EXPECT_EQ(listAfterStart(), Lines{name});
}

TEST_F(UserIRModelTest, TheListHoldsFiftyAndAFullOneStillTakesItsOwnNames) {
    UserIRModel model(storage);
    for (int i = 0; i < 50; ++i)
        model.addUserIR("ir" + std::to_string(i), "bytes");
    EXPECT_THROW(model.addUserIR("one more", "bytes"), tvk::UserIRListFull);
    EXPECT_FALSE(exists(fileOf("one more")));
    EXPECT_EQ(model.getUserIRList().size(), 50u);
    model.addUserIR("ir7", "other");
    EXPECT_EQ(read(fileOf("ir7")), "other");
    EXPECT_EQ(model.getUserIRList().size(), 50u);
    model.removeUserIR(1);
    model.addUserIR("one more", "bytes");
    EXPECT_EQ(listOf(model).back(), "one more");
}

TEST_F(UserIRModelTest, AFileThatCannotBeWrittenIsAnExceptionAndNoRecord) {
    UserIRModel model(storage);
    files.unwritable = "a.wav.tmp";
    EXPECT_THROW(model.addUserIR("a", "bytes"), tvk::Exception);
    EXPECT_TRUE(listOf(model).empty());
    EXPECT_FALSE(exists(fileOf("a")));
}

TEST_F(UserIRModelTest, AMoveTakesTheRecordOutAndPutsItInAtTheNewSlot) {
    {
        UserIRModel model(storage);
        addAll(model, {"a", "b", "c", "d"});
        model.moveUserIR(1, 3);
        EXPECT_EQ(listOf(model), (Lines{"b", "c", "a", "d"}));
        model.moveUserIR(4, 1);
        EXPECT_EQ(listOf(model), (Lines{"d", "b", "c", "a"}));
        model.moveUserIR(2, 3);
        EXPECT_EQ(listOf(model), (Lines{"d", "c", "b", "a"}));
    }
    EXPECT_EQ(listAfterStart(), (Lines{"d", "c", "b", "a"}));
}

TEST_F(UserIRModelTest, AMoveToTheSameSlotDoesNotSave) {
    {
        UserIRModel model(storage);
        addAll(model, {"a", "b", "c"});
    }
    fs::remove(place(kCatalogue));
    {
        UserIRModel model(storage);
        model.moveUserIR(3, 3);
        EXPECT_EQ(listOf(model), (Lines{"a", "b", "c"}));
    }
    EXPECT_FALSE(exists(kCatalogue));
}

TEST_F(UserIRModelTest, SlotsThatAreNotThereAreInvalidArguments) {
    UserIRModel model(storage);
    addAll(model, {"a", "b"});
    for (const auto& [from, to] :
         {std::pair{0u, 1u}, {1u, 0u}, {3u, 1u}, {1u, 3u}, {0u, 0u}, {4294967295u, 1u}})
        EXPECT_EQ(refusalOf([&, from = from, to = to] { model.moveUserIR(from, to); }), "Invalid argument.");
    for (const std::uint32_t slot : {0u, 3u, 4294967295u})
        EXPECT_EQ(refusalOf([&] { model.removeUserIR(slot); }), "Invalid argument.");
    EXPECT_EQ(listOf(model), (Lines{"a", "b"}));
}

TEST_F(UserIRModelTest, ARemovalDeletesTheFileAndTheRecord) {
    {
        UserIRModel model(storage);
        addAll(model, {"a", "b", "c"});
        model.removeUserIR(2);
        EXPECT_EQ(listOf(model), (Lines{"a", "c"}));
        EXPECT_FALSE(exists(fileOf("b")));
        EXPECT_TRUE(exists(fileOf("c")));
    }
    EXPECT_EQ(saved(), (Lines{"a", "c"}));
}

TEST_F(UserIRModelTest, ARecordWhoseFileHasVanishedCanBeRemoved) {
    UserIRModel model(storage);
    addAll(model, {"a", "b"});
    fs::remove(place(fileOf("a")));
    model.removeUserIR(1);
    EXPECT_EQ(listOf(model), Lines{"b"});
}

TEST_F(UserIRModelTest, AFileThatCannotBeDeletedKeepsItsRecord) {
    UserIRModel model(storage);
    addAll(model, {"a", "b"});
    files.undeletable = "a.wav";
    EXPECT_THROW(model.removeUserIR(1), tvk::Exception);
    EXPECT_EQ(listOf(model), (Lines{"a", "b"}));
}

TEST_F(UserIRModelTest, AFileThatVanishedStaysListedAsMissing) {
    {
        UserIRModel model(storage);
        addAll(model, {"a", "b"});
    }
    fs::remove(place(fileOf("a")));
    EXPECT_EQ(listAfterStart(), (Lines{"a (missing)", "b"}));
}

TEST_F(UserIRModelTest, FilesThatNoRecordTellsOfAreAddedInTheOrderOfTheirNames) {
    {
        UserIRModel model(storage);
        addAll(model, {"m"});
    }
    for (const char* name : {"z", "b", "a.wav"})
        write(fileOf(name), "bytes");
    EXPECT_EQ(listAfterStart(), (Lines{"m", "a.wav", "b", "z"})) << "the extension is taken off once";
    EXPECT_EQ(listAfterStart(), (Lines{"m", "a.wav", "b", "z"}));
}

TEST_F(UserIRModelTest, OnlyRegularFilesWithTheExtensionAndAGoodNameAreListed) {
    for (const char* file :
         {"a.wav", "b.WAV", "c.aif", "d.wav.tmp", ".wav", "None.wav", "e\n.wav", "f\xFF.wav"})
        write(std::string("/mnt/user-data/userIRs/") + file, "bytes");
    fs::create_directory(place(fileOf("folder")));
    fs::create_symlink(place(fileOf("a")), place(fileOf("link")));
    EXPECT_EQ(listAfterStart(), Lines{"a"});
    EXPECT_TRUE(complaints().empty());
}

TEST_F(UserIRModelTest, ALinkInPlaceOfARecordsFileIsAMissingFile) {
    {
        UserIRModel model(storage);
        addAll(model, {"a", "b"});
    }
    fs::remove(place(fileOf("a")));
    fs::create_symlink(place(fileOf("b")), place(fileOf("a")));
    EXPECT_EQ(listAfterStart(), (Lines{"a (missing)", "b"}));
}

TEST_F(UserIRModelTest, TheListStopsAtFifty) {
    for (int i = 0; i < 60; ++i)
        write(fileOf("ir" + std::to_string(100 + i)), "bytes");
    const Lines names = listAfterStart();
    ASSERT_EQ(names.size(), 50u);
    EXPECT_EQ(names.front(), "ir100");
    EXPECT_EQ(names.back(), "ir149");

    nlohmann::json catalogue;
    for (int i = 0; i < 60; ++i)
        catalogue["userIRs"].push_back({{"name", "ir" + std::to_string(159 - i)}, {"exists", true}});
    write(kCatalogue, catalogue.dump());
    EXPECT_EQ(listAfterStart().size(), 50u);
    EXPECT_EQ(listAfterStart().front(), "ir159");
}

TEST_F(UserIRModelTest, ACatalogueThatCannotBeReadGivesTheFilesInTheOrderOfTheirNames) {
    write(fileOf("b"), "bytes");
    write(fileOf("a"), "bytes");
    for (const std::string text :
         {"", "{", "[]", "{}", R"({"userIRs": {}})", R"({"userIRs": [{"name": "b"}]})",
          R"({"userIRs": [{"name": 1, "exists": true}]})", R"({"userIRs": [{"name": "b", "exists": 1}]})",
          R"({"userIRs": ["b"]})"}) {
        write(kCatalogue, text);
        log.clear();
        EXPECT_EQ(listAfterStart(), (Lines{"a", "b"})) << text;
        EXPECT_EQ(complaints(), Lines{"Error Failed to load user IR database."}) << text;
        EXPECT_EQ(read(kCatalogue), text) << "left until the next change";
    }
    write(kCatalogue, R"({"userIRs": [{"name": "b", "exists": true}]})" + std::string(1 << 20, ' '));
    log.clear();
    EXPECT_EQ(listAfterStart(), (Lines{"a", "b"}));
    EXPECT_EQ(complaints(), Lines{"Error Failed to load user IR database."});
}

TEST_F(UserIRModelTest, RecordsWhoseNamesMayNotBeAndRepetitionsAreLeftOut) {
    write(kCatalogue,
          R"({"userIRs": [{"name": "../../home/root/x", "exists": true}, {"name": "a", "exists": true},
                                      {"name": "None", "exists": true}, {"name": "a", "exists": false}]})");
    EXPECT_EQ(listAfterStart(), Lines{"a (missing)"});
    EXPECT_EQ(complaints().size(), 3u);
}

TEST_F(UserIRModelTest, ACatalogueThatCannotBeSavedIsAWarningAndLeavesTheOldOne) {
    {
        UserIRModel model(storage);
        addAll(model, {"a", "b"});
    }
    {
        UserIRModel model(storage);
        files.unwritable = "userIRs.json.tmp";
        model.moveUserIR(1, 2);
        EXPECT_EQ(listOf(model), (Lines{"b", "a"}));
    }
    EXPECT_TRUE(log.has("Warn Failed to save user IR database to disk."));
    EXPECT_EQ(saved(), (Lines{"a", "b"}));
}

TEST_F(UserIRModelTest, AFolderThatCannotBeListedIsAWarning) {
    write(fileOf("a"), "bytes");
    files.unlistable = "userIRs/";
    EXPECT_TRUE(listAfterStart().empty());
    EXPECT_EQ(complaints(), Lines{"Warn Can't open directory '" + place("/mnt/user-data/userIRs/").string() +
                                  "': Input/output error"});
}

}  // namespace
