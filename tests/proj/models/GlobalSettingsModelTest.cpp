#include <nlohmann/json.hpp>
#include <thread>

#include "ProductFolders.h"
#include "proj/models/GlobalSettingsModel.h"
#include "utility/Exception.h"

namespace {

using tvk::GlobalSettingsModel;

constexpr const char* kSettingsFile = "/mnt/user-data/globalSettings.json";
constexpr const char* kUnreadable = "Warn Failed to load global settings file.";

class Ear : public tvk::GlobalSettingsObserver {
public:
    void reverbTaperTypeChangedHandler(int type) override {
        heard.push_back("taper " + std::to_string(type));
        if (onCall) onCall();
    }
    void vibratoChannelBrightChangedHandler(int isOn) override {
        heard.push_back("bright " + std::to_string(isOn));
        if (onCall) onCall();
    }
    std::vector<std::string> heard;
    std::function<void()> onCall;
};

class GlobalSettingsModelTest : public ProductFolders {
protected:
    // What the file holds, as one line of taper, bright and schema version.
    static std::string saved() {
        const nlohmann::json json = nlohmann::json::parse(read(kSettingsFile));
        EXPECT_EQ(json.size(), 3u);
        return json.at("reverbTaperType").dump() + " " + json.at("vibratoChannelBright").dump() + " " +
               json.at("schemaVersion").dump();
    }
    static std::string held(const GlobalSettingsModel& model) {
        return std::to_string(model.getReverbTaperType()) +
               (model.getVibratoChannelBright() ? " true" : " false");
    }
    std::string heldAfterLoading(const std::string& text) {
        write(kSettingsFile, text);
        log.clear();
        return held(GlobalSettingsModel(storage));
    }
};

TEST_F(GlobalSettingsModelTest, AMissingFileIsCreatedWithTheDefaults) {
    const GlobalSettingsModel model(storage);
    EXPECT_EQ(held(model), "0 false");
    EXPECT_EQ(saved(), "0 false 1");
    EXPECT_TRUE(log.has("GlobalSettingsModel: Creating global settings database"));
    EXPECT_TRUE(complaints().empty());
}

TEST_F(GlobalSettingsModelTest, WhatWasSetIsSavedAndThereAfterTheNextStart) {
    {
        GlobalSettingsModel model(storage);
        model.setReverbTaperType(2);
        EXPECT_EQ(saved(), "2 false 1");
        model.setVibratoChannelBright(true);
        EXPECT_EQ(saved(), "2 true 1");
        EXPECT_TRUE(log.has("GlobalSettingsModel: setReverbTaperType"));
        EXPECT_TRUE(log.has("GlobalSettingsModel: setVibratoChannelBright"));
    }
    EXPECT_EQ(held(GlobalSettingsModel(storage)), "2 true");
    EXPECT_TRUE(complaints().empty());
}

TEST_F(GlobalSettingsModelTest, AFileOfANewerSchemaIsKeptWithTheDefaultsInForceUntilTheNextSave) {
    const std::string newer = R"({"schemaVersion": 2, "reverbTaperType": 5, "vibratoChannelBright": true})";
    write(kSettingsFile, newer);
    GlobalSettingsModel model(storage);
    EXPECT_EQ(held(model), "0 false");
    EXPECT_EQ(read(kSettingsFile), newer);
    EXPECT_EQ(complaints(), Lines{"Warn Global settings too new - using defaults."});
    model.setVibratoChannelBright(true);
    EXPECT_EQ(saved(), "0 true 1");
}

TEST_F(GlobalSettingsModelTest, AFileOfAnOlderSchemaIsBroughtUpToDateAndSaved) {
    EXPECT_EQ(heldAfterLoading(R"({"reverbTaperType": 3, "vibratoChannelBright": true})"), "3 true");
    EXPECT_EQ(saved(), "3 true 1");
    EXPECT_EQ(heldAfterLoading(R"({"schemaVersion": 0, "reverbTaperType": 4})"), "4 false");
    EXPECT_EQ(saved(), "4 false 1");
    EXPECT_EQ(heldAfterLoading(R"({"schemaVersion": -7})"), "0 false");
    EXPECT_EQ(saved(), "0 false 1");
    EXPECT_TRUE(complaints().empty());
}

TEST_F(GlobalSettingsModelTest, AFileOfTheCurrentSchemaIsReadAndNotWritten) {
    const std::string text = R"({"schemaVersion":1,"vibratoChannelBright":true})";
    EXPECT_EQ(heldAfterLoading(text), "0 true") << "what is missing has its default";
    EXPECT_EQ(read(kSettingsFile), text);
    EXPECT_TRUE(complaints().empty());
}

TEST_F(GlobalSettingsModelTest, WhatDoesNotParseIsReplacedByTheDefaults) {
    for (const std::string text : {"", "{", "{\"reverbTaperType\": 3", "\xFF", "{\"a\": \"\xFF\"}"}) {
        EXPECT_EQ(heldAfterLoading(text), "0 false") << text;
        EXPECT_EQ(saved(), "0 false 1");
        ASSERT_EQ(complaints().size(), 1u);
        EXPECT_TRUE(complaints()[0].starts_with(
            "Warn Failed to load global settings file: [json.exception.parse_error."))
            << complaints()[0];
        EXPECT_TRUE(complaints()[0].ends_with("."));
    }
}

TEST_F(GlobalSettingsModelTest, AValueOfAWrongTypeOrRangeIsReplacedByTheDefaults) {
    for (const std::string text :
         {R"({"schemaVersion": 1, "reverbTaperType": "3", "vibratoChannelBright": true})",
          R"({"schemaVersion": 1, "reverbTaperType": true, "vibratoChannelBright": true})",
          R"({"schemaVersion": 1, "reverbTaperType": 3, "vibratoChannelBright": 1})",
          R"({"schemaVersion": "1", "vibratoChannelBright": true})",
          R"({"schemaVersion": 1, "reverbTaperType": -1, "vibratoChannelBright": true})",
          R"({"schemaVersion": 1, "reverbTaperType": 2147483648, "vibratoChannelBright": true})",
          R"({"schemaVersion": 1, "reverbTaperType": 1e300, "vibratoChannelBright": true})",
          R"({"schemaVersion": 1, "reverbTaperType": 1e999, "vibratoChannelBright": true})", "[1, 2]", "null",
          "3"}) {
        EXPECT_EQ(heldAfterLoading(text), "0 false") << text;
        EXPECT_EQ(saved(), "0 false 1");
        EXPECT_EQ(complaints(), Lines{kUnreadable}) << text;
    }
}

TEST_F(GlobalSettingsModelTest, TheLargestIntIsATaper) {
    EXPECT_EQ(heldAfterLoading(R"({"schemaVersion": 1, "reverbTaperType": 2147483647})"), "2147483647 false");
    GlobalSettingsModel model(storage);
    model.setReverbTaperType(2147483647u);
    EXPECT_EQ(saved(), "2147483647 false 1");
}

TEST_F(GlobalSettingsModelTest, ATaperAboveTheLargestIntIsAnExceptionAndChangesNothing) {
    GlobalSettingsModel model(storage);
    model.setReverbTaperType(1);
    Ear ear;
    model.addObserver(ear);
    EXPECT_THROW(model.setReverbTaperType(2147483648u), tvk::Exception);
    EXPECT_EQ(held(model), "1 false");
    EXPECT_EQ(saved(), "1 false 1");
    EXPECT_TRUE(ear.heard.empty());
    model.removeObserver(ear);
}

TEST_F(GlobalSettingsModelTest, AFileOverAMebibyteIsReplacedByTheDefaults) {
    EXPECT_EQ(heldAfterLoading("{\"schemaVersion\": 1, \"reverbTaperType\": 3}" + std::string(1 << 20, ' ')),
              "0 false");
    EXPECT_EQ(saved(), "0 false 1");
    EXPECT_EQ(complaints(), Lines{kUnreadable});
}

TEST_F(GlobalSettingsModelTest, AFileThatTheDiskDoesNotGiveIsKept) {
    std::filesystem::create_directory(place(kSettingsFile));
    EXPECT_EQ(held(GlobalSettingsModel(storage)), "0 false");
    EXPECT_TRUE(std::filesystem::is_directory(place(kSettingsFile)));
    EXPECT_EQ(complaints(), Lines{kUnreadable});
}

TEST_F(GlobalSettingsModelTest, ObserversHearOfChangesThatAreStoredAndSaved) {
    GlobalSettingsModel model(storage);
    Ear first;
    Ear second;
    Lines found;
    second.onCall = [&] { found.push_back(held(model) + ", on the disk " + saved()); };
    model.addObserver(first);
    model.addObserver(second);
    model.setReverbTaperType(1);
    model.setVibratoChannelBright(true);
    EXPECT_EQ(first.heard, (Lines{"taper 1", "bright 1"}));
    EXPECT_EQ(second.heard, first.heard);
    EXPECT_EQ(found, (Lines{"1 false, on the disk 1 false 1", "1 true, on the disk 1 true 1"}));

    model.removeObserver(first);
    model.setReverbTaperType(0);
    EXPECT_EQ(first.heard.size(), 2u);
    EXPECT_EQ(second.heard.size(), 3u);
    model.removeObserver(second);
}

TEST_F(GlobalSettingsModelTest, AnObserverMayChangeASettingAndRemoveItself) {
    GlobalSettingsModel model(storage);
    Ear ear;
    ear.onCall = [&] {
        model.removeObserver(ear);
        model.setVibratoChannelBright(true);
    };
    model.addObserver(ear);
    model.setReverbTaperType(1);
    EXPECT_EQ(ear.heard, Lines{"taper 1"});
    EXPECT_EQ(saved(), "1 true 1");
}

TEST_F(GlobalSettingsModelTest, AFileThatCannotBeSavedLeavesTheOldOneAndTheNewValueInForce) {
    GlobalSettingsModel model(storage);
    Ear ear;
    model.addObserver(ear);
    model.setReverbTaperType(1);
    log.clear();
    files.unwritable = "globalSettings.json.tmp";
    model.setReverbTaperType(2);
    EXPECT_EQ(held(model), "2 false");
    EXPECT_EQ(saved(), "1 false 1");
    EXPECT_EQ(ear.heard, (Lines{"taper 1", "taper 2"}));
    EXPECT_TRUE(log.has("Warn Failed to save global settings to disk."));
    model.removeObserver(ear);
}

TEST_F(GlobalSettingsModelTest, AfterChangesFromSeveralThreadsTheFileHoldsWhatIsInForce) {
    GlobalSettingsModel model(storage);
    std::vector<std::thread> threads;
    for (unsigned thread = 0; thread < 4; ++thread)
        threads.emplace_back([&model, thread] {
            for (unsigned i = 0; i < 10; ++i) {
                model.setReverbTaperType(100 * thread + i);
                model.setVibratoChannelBright((i + thread) % 2 == 0);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(saved(), held(model) + " 1");
}

}  // namespace
