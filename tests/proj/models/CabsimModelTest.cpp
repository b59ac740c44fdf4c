#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <thread>

#include "ProductFolders.h"
#include "proj/models/CabsimModel.h"
#include "proj/models/FactoryIRModel.h"
#include "proj/models/GlobalSettingsModel.h"
#include "proj/models/Model.h"
#include "support/card/EngineOnCard.h"
#include "utility/Exception.h"

namespace {

using tvk::CabsimIR;
using tvk::CabsimModel;

constexpr const char* kFile = "/mnt/user-data/userCabsimConfig.json";
constexpr const char* kDirectory = "/home/root/factoryIRs/Arvel-SlatePanel-IRs/";

nlohmann::json record(bool isFactory, const std::string& name, double hpf, double lpf, double level) {
    return {{"isFactory", isFactory}, {"irName", name}, {"isDirty", false}, {"hpf", hpf}, {"lpf", lpf},
            {"level", level}};
}

std::string configOf(const std::vector<nlohmann::json>& records) {
    return nlohmann::json{{"cabsimIRs", records}}.dump();
}

CabsimIR factory(const std::string& name, float hpf = 20.0f, float lpf = 20000.0f, float level = -5.0f) {
    return {true, name, false, hpf, lpf, level};
}

CabsimIR user(const std::string& name, float hpf = 20.0f, float lpf = 20000.0f, float level = -5.0f) {
    return {false, name, false, hpf, lpf, level};
}

CabsimIR dirty(CabsimIR slot) {
    slot.isDirty = true;
    return slot;
}

// What the engine was told, in the words of its façade.
std::vector<std::string> engineLines(const std::string& path, float hpf, float lpf, float level) {
    return {"Model: setCabsim(" + path + ")", "Model: setCabsimHPF(" + std::to_string(hpf) + ")",
            "Model: setCabsimLPF(" + std::to_string(lpf) + ")",
            "Model: setCabsimLevel(" + std::to_string(level) + ")"};
}

class CabsimModelTest : public ProductFolders {
protected:
    using Slots = CabsimModel::Slots;

    CabsimModelTest() {
        for (const char* name : {"A1", "A2", "A3"})
            write(kDirectory + std::string(name) + ".wav", "bytes");
        for (const char* name : {"U1", "U2"})
            write("/mnt/user-data/userIRs/" + std::string(name) + ".wav", "bytes");
        write("/home/root/factoryIRsArvelSlate.json",
              R"({"factoryIRs": [{"name": "A1"}, {"name": "A2"}, {"name": "A3"}]})");
        write("/home/root/factoryIRs/Corvin-SlatePanel-IRs/C1.wav", "bytes");
        write("/home/root/factoryIRsCorvinSlate.json", R"({"factoryIRs": [{"name": "C1"}]})");
        write("/home/root/userCabsimDefaultsArvelSlate.json",
              configOf({record(true, "A1", 30, 9000, -1), record(true, "A2", 40, 8000, -2),
                        record(true, "A3", 50, 7000, -3)}));
        write("/home/root/userCabsimDefaultsCorvinSlate.json",
              configOf({record(true, "C1", 30, 9000, -1), record(true, "C1", 40, 8000, -2),
                        record(true, "C1", 50, 7000, -3)}));
        write(kFile, kUserConfig);
    }

    // Every model of the cabinet, as the program starts them.
    struct Amplifier {
        explicit Amplifier(CabsimModelTest& test, const std::string& family = "slatePanel")
            : engine(family),
              factoryIRs(engine.model(), test.storage),
              settings(test.storage),
              cabsim(engine.model(), settings, factoryIRs, test.storage) {}

        // As the controller does it, without the preset.
        void tellAmplifier(int id) {
            engine.model().panel().productId.set(id);
            factoryIRs.amplifierChanged(id);
            cabsim.amplifierChanged(id);
        }

        EngineOnCard engine;
        tvk::FactoryIRModel factoryIRs;
        tvk::GlobalSettingsModel settings;
        CabsimModel cabsim;
    };

    // Lines of the façade since the last clear.
    Lines engineCalls() const { return log.startingWith("Model: set"); }
    static nlohmann::json saved() { return nlohmann::json::parse(read(kFile)).at("cabsimIRs"); }

    const std::string kUserConfig =
        configOf({record(false, "U1", 100, 5000, -10), record(true, "A2", 110, 5100, -11),
                  record(false, "U2", 120, 5200, -12)});
    const Slots kUserSlots{user("U1", 100, 5000, -10), factory("A2", 110, 5100, -11),
                           user("U2", 120, 5200, -12)};
    const Slots kArvelDefaults{factory("A1", 30, 9000, -1), factory("A2", 40, 8000, -2),
                               factory("A3", 50, 7000, -3)};
    const Slots kCorvinDefaults{factory("C1", 30, 9000, -1), factory("C1", 40, 8000, -2),
                                factory("C1", 50, 7000, -3)};
};

// Start and amplifier

TEST_F(CabsimModelTest, AtTheStartTheUsersFileIsInForceAndTheEngineIsNotCalled) {
    const Amplifier amp(*this);
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), kUserSlots);
    EXPECT_EQ(amp.cabsim.getVirtualCabsim(), 0u);
    EXPECT_TRUE(engineCalls().empty());
    EXPECT_EQ(read(kFile), kUserConfig);
}

TEST_F(CabsimModelTest, AtTheStartUserSlotsWithoutTheirFileAreEmptiedAndFactorySlotsWait) {
    std::filesystem::remove(place("/mnt/user-data/userIRs/U2.wav"));
    std::filesystem::remove(place(kDirectory + std::string("A2.wav")));
    Amplifier amp(*this);
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), (Slots{kUserSlots[0], kUserSlots[1], CabsimIR{}}));
    amp.tellAmplifier(0);
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), (Slots{kUserSlots[0], CabsimIR{}, CabsimIR{}}));
    EXPECT_TRUE(log.has("CabsimModel: syncCabsimIRDatabase()"));
}

TEST_F(CabsimModelTest, AMissingUserFileStartsFromTheAmplifiersDefaults) {
    std::filesystem::remove(place(kFile));
    Amplifier amp(*this);
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), Slots{}) << "the amplifier is not known yet";
    log.clear();
    amp.tellAmplifier(0);
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), kArvelDefaults);
    EXPECT_TRUE(complaints().empty());
    EXPECT_FALSE(exists(kFile)) << "nothing is saved unasked";
}

TEST_F(CabsimModelTest, AnUnreadableUserFileIsAnErrorAndTheDefaultsAreInForce) {
    const std::vector<nlohmann::json> good{record(false, "U1", 100, 5000, -10),
                                           record(true, "A2", 110, 5100, -11),
                                           record(false, "U2", 120, 5200, -12)};
    std::vector<std::string> texts{"",
                                   "{",
                                   "[]",
                                   "{}",
                                   "null",
                                   R"({"cabsimIRs": {}})",
                                   R"({"cabsimIRs": [1, 2, 3]})",
                                   configOf({good[0], good[1]}),
                                   configOf({good[0], good[1], good[2], good[0]}),
                                   configOf(good) + std::string(1 << 20, ' ')};
    for (const char* key : {"isFactory", "irName", "isDirty", "hpf", "lpf", "level"}) {
        std::vector<nlohmann::json> records = good;
        records[1].erase(key);
        texts.push_back(configOf(records));
        records[1][key] = nlohmann::json::array();
        texts.push_back(configOf(records));
    }
    Amplifier amp(*this);
    for (const std::string& text : texts) {
        write(kFile, text);
        amp.tellAmplifier(1);
        log.clear();
        amp.tellAmplifier(0);
        EXPECT_EQ(amp.cabsim.getCabsimIRList(), kArvelDefaults) << text.substr(0, 300);
        EXPECT_EQ(complaints(), Lines{"Error Failed to load cabsim IR database."}) << text.substr(0, 300);
        EXPECT_EQ(read(kFile), text);
    }
}

TEST_F(CabsimModelTest, ValuesOfTheFileAreClampedAndNamesThatMayNotBeEmptyTheSlot) {
    write(kFile, configOf({record(false, "U1", 5, 90000, 3), record(false, "../U1", 100, 5000, -10),
                           record(true, "", -1e300, 10, -400)}));
    const Amplifier amp(*this);
    EXPECT_EQ(amp.cabsim.getCabsimIRList(),
              (Slots{user("U1", 20, 20000, 0), CabsimIR{}, factory("", 20, 1000, -36)}))
        << "a slot without a name is left alone";
}

TEST_F(CabsimModelTest, UnreadableDefaultsLeaveThreeEmptySlots) {
    std::filesystem::remove(place(kFile));
    write("/home/root/userCabsimDefaultsArvelSlate.json", "{");
    Amplifier amp(*this);
    log.clear();
    amp.tellAmplifier(0);
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), Slots{});
    EXPECT_EQ(complaints(), Lines{"Error Failed to load cabsim IR database."});
}

TEST_F(CabsimModelTest, EveryAmplifierOfAFamilyHasItsDefaults) {
    struct Row {
        const char* family;
        int amplifier;
        const char* defaults;
        const char* folder;
    };
    const Row rows[] = {{"slatePanel", 0, "ArvelSlate", "Arvel-SlatePanel"},
                        {"slatePanel", 1, "CorvinSlate", "Corvin-SlatePanel"},
                        {"slatePanel", 2, "Lisko", "Lisko-SlatePanel"},
                        {"slatePanel", 3, "Sorrel", "Sorrel-SlatePanel"},
                        {"fawn", 0, "ArvelFawn", "Arvel-Fawn"},
                        {"fawn", 1, "CorvinFawn", "Corvin-Fawn"}};
    std::filesystem::remove(place(kFile));
    for (const Row& row : rows) {
        const std::string name = row.defaults;
        write("/home/root/userCabsimDefaults" + name + ".json",
              configOf(std::vector(3, record(true, name, 30, 9000, -1))));
        write("/home/root/factoryIRs/" + std::string(row.folder) + "-IRs/" + name + ".wav", "bytes");
    }
    for (const char* const family : {"slatePanel", "fawn"}) {
        Amplifier amp(*this, family);
        for (const Row& row : rows) {
            if (row.family != std::string(family)) continue;
            amp.tellAmplifier(row.amplifier);
            EXPECT_EQ(amp.cabsim.getCabsimIRList()[2], factory(row.defaults, 30, 9000, -1)) << row.defaults;
        }
    }
}

TEST_F(CabsimModelTest, AnAmplifierThatTheFamilyDoesNotHaveHasNoDefaults) {
    const std::pair<const char*, const char*> warnings[] = {
        {"slatePanel", "Warn No Slate Panel cabsim defaults for specified amp."},
        {"fawn", "Warn No Fawn cabsim defaults for specified amp."},
        {"ostrel", "Warn No cabsim defaults for specified product family: ostrel."}};
    std::filesystem::remove(place(kFile));
    for (const auto& [family, warning] : warnings) {
        Amplifier amp(*this, family);
        log.clear();
        amp.cabsim.amplifierChanged(4);
        EXPECT_EQ(complaints(), Lines{warning});
        EXPECT_EQ(amp.cabsim.getCabsimIRList(), Slots{});
    }
}

TEST_F(CabsimModelTest, TheSameAmplifierAgainKeepsWhatIsNotSavedAndANewOneDropsIt) {
    Amplifier amp(*this);
    amp.tellAmplifier(0);
    ASSERT_TRUE(amp.cabsim.setCabHPF(0, 77.0f));
    Slots edited = kUserSlots;
    edited[0].hpf = 77.0f;
    edited[0].isDirty = true;
    amp.tellAmplifier(0);
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), edited);
    std::filesystem::remove(place(kFile));
    amp.tellAmplifier(1);
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), kCorvinDefaults);
}

TEST_F(CabsimModelTest, EveryAmplifierIdTakesTheStoredReverbTaperToTheEngine) {
    Amplifier amp(*this);
    amp.settings.setReverbTaperType(3);
    for (int round = 0; round < 2; ++round) {
        log.clear();
        amp.tellAmplifier(0);
        EXPECT_EQ(engineCalls(), Lines{"Model: setReverbTaper(3)"});
    }
}

TEST_F(CabsimModelTest, TheCurrentAmplifierIsTheLastThatThePanelNamed) {
    Amplifier amp(*this);
    EXPECT_EQ(amp.cabsim.getCurrentAmplifier(), std::nullopt);
    amp.tellAmplifier(1);
    EXPECT_EQ(amp.cabsim.getCurrentAmplifier(), 1);
    amp.engine.model().panel().productId.set(9);
    EXPECT_EQ(amp.cabsim.getCurrentAmplifier(), std::nullopt) << "none of the four";
    amp.tellAmplifier(0);
    EXPECT_EQ(amp.cabsim.getCurrentAmplifier(), 0);
}

// Selection

TEST_F(CabsimModelTest, SelectingASlotTakesAllOfItToTheEngine) {
    Amplifier amp(*this);
    amp.tellAmplifier(0);
    log.clear();
    amp.cabsim.setVirtualCabsim(1);
    EXPECT_EQ(engineCalls(), engineLines(kDirectory + std::string("A2"), 110, 5100, -11));
    EXPECT_EQ(amp.cabsim.getVirtualCabsim(), 1u);
    log.clear();
    amp.cabsim.setVirtualCabsim(2);
    EXPECT_EQ(engineCalls(), engineLines("/mnt/user-data/userIRs/U2", 120, 5200, -12));
    log.clear();
    amp.cabsim.reapplyVirtualCabsim();
    EXPECT_EQ(engineCalls(), engineLines("/mnt/user-data/userIRs/U2", 120, 5200, -12));
}

TEST_F(CabsimModelTest, ASlotAboveTheThirdCannotBeSelected) {
    Amplifier amp(*this);
    amp.cabsim.setVirtualCabsim(2);
    log.clear();
    for (const std::uint32_t slot : {3u, 4294967295u}) {
        try {
            amp.cabsim.setVirtualCabsim(slot);
            FAIL();
        } catch (const tvk::Exception& refusal) {
            EXPECT_EQ(std::string(refusal.what()),
                      slot == 3 ? "invalid setVirtualCabsim(3)" : "invalid setVirtualCabsim(-1)");
        }
    }
    EXPECT_EQ(amp.cabsim.getVirtualCabsim(), 2u);
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(CabsimModelTest, ASelectedSlotWhoseFileIsGoneIsEmptiedFirst) {
    Amplifier amp(*this);
    amp.tellAmplifier(0);
    std::filesystem::remove(place("/mnt/user-data/userIRs/U2.wav"));
    log.clear();
    amp.cabsim.setVirtualCabsim(2);
    EXPECT_EQ(engineCalls(), engineLines("None", 20, 20000, -5));
    EXPECT_EQ(amp.cabsim.getCabsimIRList()[2], CabsimIR{});
}

TEST_F(CabsimModelTest, ALinkInPlaceOfTheUsersFileIsNoFile) {
    Amplifier amp(*this);
    std::filesystem::remove(place("/mnt/user-data/userIRs/U2.wav"));
    std::filesystem::create_symlink(place("/mnt/user-data/userIRs/U1.wav"),
                                    place("/mnt/user-data/userIRs/U2.wav"));
    amp.cabsim.setVirtualCabsim(2);
    EXPECT_EQ(amp.cabsim.getCabsimIRList()[2], CabsimIR{});
}

TEST_F(CabsimModelTest, BeforeTheAmplifierIsKnownAFactorySlotIsKeptAndPlaysNothing) {
    write("/mnt/user-data/userIRs/A2.wav", "a user's response of the same name");
    Amplifier amp(*this);
    log.clear();
    amp.cabsim.setVirtualCabsim(1);
    EXPECT_EQ(engineCalls(), engineLines("None", 110, 5100, -11));
    EXPECT_EQ(amp.cabsim.getCabsimIRFilePath(1), "None");
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), kUserSlots);
}

TEST_F(CabsimModelTest, PathsLeadToTheCatalogueOfTheSlot) {
    Amplifier amp(*this);
    amp.tellAmplifier(0);
    log.clear();
    EXPECT_EQ(amp.cabsim.getCabsimIRFilePath(0), "/mnt/user-data/userIRs/U1");
    EXPECT_EQ(log.lines(), Lines{"CabsimModel: getCabsimIRFilePath"});
    EXPECT_EQ(amp.cabsim.getCabsimIRFilePath(1), kDirectory + std::string("A2"));
    EXPECT_EQ(amp.cabsim.getCabsimIRFilePath(3), "None");
    ASSERT_TRUE(amp.cabsim.assignUserIRToCabsim(0, "None"));
    EXPECT_EQ(amp.cabsim.getCabsimIRFilePath(0), "None");
}

TEST_F(CabsimModelTest, GettersOfASlotThatIsNotThereFallBackWithAWarning) {
    const Amplifier amp(*this);
    EXPECT_EQ(amp.cabsim.getCabHPF(2), 120.0f);
    EXPECT_EQ(amp.cabsim.getCabLPF(2), 5200.0f);
    EXPECT_EQ(amp.cabsim.getCabLevel(2), -12.0f);
    log.clear();
    EXPECT_EQ(amp.cabsim.getCabHPF(3), 20.0f);
    EXPECT_EQ(amp.cabsim.getCabLPF(3), 20000.0f);
    EXPECT_EQ(amp.cabsim.getCabLevel(3), -5.0f);
    EXPECT_EQ(log.lines(), (Lines{"Warn Failed to get cab HPF for selection 3, returning default value",
                                  "Warn Failed to get cab LPF for selection 3, returning default value",
                                  "Warn Failed to get cab level for selection 3, returning default value"}));
}

// Edits

TEST_F(CabsimModelTest, AssigningToTheSlotInForceIsHeardAtOnce) {
    Amplifier amp(*this);
    amp.tellAmplifier(0);
    log.clear();
    EXPECT_TRUE(amp.cabsim.assignFactoryIRToCabsim(0, "A3"));
    EXPECT_EQ(engineCalls(), engineLines(kDirectory + std::string("A3"), 100, 5000, -5));
    EXPECT_EQ(amp.cabsim.getCabsimIRList()[0], dirty(factory("A3", 100, 5000, -5)));
    log.clear();
    EXPECT_TRUE(amp.cabsim.assignUserIRToCabsim(0, "U2"));
    EXPECT_EQ(engineCalls(), engineLines("/mnt/user-data/userIRs/U2", 100, 5000, -5));
    EXPECT_EQ(amp.cabsim.getCabsimIRList()[0], dirty(user("U2", 100, 5000, -5)));
}

TEST_F(CabsimModelTest, AssigningToAnotherSlotIsNotHeardUntilItIsSelected) {
    Amplifier amp(*this);
    amp.tellAmplifier(0);
    log.clear();
    EXPECT_TRUE(amp.cabsim.assignFactoryIRToCabsim(2, "A3"));
    EXPECT_TRUE(engineCalls().empty());
    amp.cabsim.setVirtualCabsim(2);
    EXPECT_EQ(engineCalls(), engineLines(kDirectory + std::string("A3"), 120, 5200, -5));
}

TEST_F(CabsimModelTest, SlotsAndNamesThatMayNotBeAreNotAssigned) {
    Amplifier amp(*this);
    for (const std::uint32_t slot : {3u, 4294967295u}) {
        EXPECT_FALSE(amp.cabsim.assignFactoryIRToCabsim(slot, "A1"));
        EXPECT_FALSE(amp.cabsim.assignUserIRToCabsim(slot, "U1"));
    }
    for (const char* name : {"", ".", "..", "../U1", "a\nb"}) {
        EXPECT_FALSE(amp.cabsim.assignFactoryIRToCabsim(0, name));
        EXPECT_FALSE(amp.cabsim.assignUserIRToCabsim(0, name));
    }
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), kUserSlots);
}

TEST_F(CabsimModelTest, AnUnknownNameAndNoneAreAssignedAsWrittenUntilTheyAreLookedAt) {
    Amplifier amp(*this);
    amp.tellAmplifier(0);
    ASSERT_TRUE(amp.cabsim.setCabHPF(0, 99.0f));
    EXPECT_TRUE(amp.cabsim.assignFactoryIRToCabsim(0, "Unknown"));
    EXPECT_EQ(amp.cabsim.getCabsimIRList()[0], dirty(factory("Unknown", 99, 5000, -5)));
    EXPECT_TRUE(amp.cabsim.assignUserIRToCabsim(1, "None"));
    EXPECT_EQ(amp.cabsim.getCabsimIRList()[1], dirty(user("None", 110, 5100, -5)));
    amp.cabsim.syncCabsimIRDatabase();
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), (Slots{CabsimIR{}, CabsimIR{}, kUserSlots[2]}));
}

TEST_F(CabsimModelTest, ValuesOfTheSlotInForceGoToTheEngine) {
    Amplifier amp(*this);
    log.clear();
    EXPECT_TRUE(amp.cabsim.setCabHPF(0, 200.0f));
    EXPECT_TRUE(amp.cabsim.setCabLPF(0, 3000.0f));
    EXPECT_TRUE(amp.cabsim.setCabLevel(0, -20.0f));
    EXPECT_EQ(log.lines(), (Lines{"Model: setCabsimHPF(200.000000)", "Model: setCabsimLPF(3000.000000)",
                                  "Model: setCabsimLevel(-20.000000)"}));
    EXPECT_EQ(amp.cabsim.getCabsimIRList()[0], dirty(user("U1", 200, 3000, -20)));
}

TEST_F(CabsimModelTest, ValuesOfAnotherSlotAreStoredWithAWarning) {
    Amplifier amp(*this);
    log.clear();
    EXPECT_TRUE(amp.cabsim.setCabHPF(2, 200.0f));
    EXPECT_TRUE(amp.cabsim.setCabLPF(2, 3000.0f));
    EXPECT_TRUE(amp.cabsim.setCabLevel(2, -20.0f));
    EXPECT_EQ(log.lines(), (Lines{"Warn Setting HPF for cabsim that is not loaded.",
                                  "Warn Setting LPF for cabsim that is not loaded.",
                                  "Warn Setting level for cabsim that is not loaded."}));
    EXPECT_EQ(amp.cabsim.getCabsimIRList()[2], dirty(user("U2", 200, 3000, -20)));
}

TEST_F(CabsimModelTest, ASlotThatIsNotThereAndNotANumberAreRefusedWithAWarning) {
    Amplifier amp(*this);
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    log.clear();
    EXPECT_FALSE(amp.cabsim.setCabHPF(3, 200.0f));
    EXPECT_FALSE(amp.cabsim.setCabLPF(3, 3000.0f));
    EXPECT_FALSE(amp.cabsim.setCabLevel(3, -20.0f));
    EXPECT_FALSE(amp.cabsim.setCabHPF(0, kNaN));
    EXPECT_FALSE(amp.cabsim.setCabLPF(1, kNaN));
    EXPECT_FALSE(amp.cabsim.setCabLevel(2, kNaN));
    EXPECT_EQ(
        log.lines(),
        (Lines{"Warn Failed to set cab HPF for selection 3", "Warn Failed to set cab LPF for selection 3",
               "Warn Failed to set cab level for selection 3", "Warn Failed to set cab HPF for selection 0",
               "Warn Failed to set cab LPF for selection 1",
               "Warn Failed to set cab level for selection 2"}));
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), kUserSlots);
}

TEST_F(CabsimModelTest, ValuesOutsideTheirLimitsAreClampedInfinitiesToo) {
    Amplifier amp(*this);
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    ASSERT_TRUE(amp.cabsim.setCabHPF(0, 5.0f) && amp.cabsim.setCabLPF(0, 5.0f) &&
                amp.cabsim.setCabLevel(0, 3.0f));
    EXPECT_EQ(amp.cabsim.getCabsimIRList()[0], dirty(user("U1", 20, 1000, 0)));
    ASSERT_TRUE(amp.cabsim.setCabHPF(0, kInfinity) && amp.cabsim.setCabLPF(0, kInfinity) &&
                amp.cabsim.setCabLevel(0, -kInfinity));
    EXPECT_EQ(amp.cabsim.getCabsimIRList()[0], dirty(user("U1", 500, 20000, -36)));
}

// Save and sync

TEST_F(CabsimModelTest, ASaveIsOnTheDiskWhenItReturnsAndNothingIsDirtyAnyMore) {
    Slots edited;
    {
        Amplifier amp(*this);
        amp.tellAmplifier(0);
        ASSERT_TRUE(amp.cabsim.assignFactoryIRToCabsim(2, "A3"));
        ASSERT_TRUE(amp.cabsim.setCabLevel(1, -30.5f));
        EXPECT_TRUE(amp.cabsim.saveCurrentState());
        edited = {kUserSlots[0], factory("A2", 110, 5100, -30.5f), factory("A3", 120, 5200, -5)};
        EXPECT_EQ(amp.cabsim.getCabsimIRList(), edited);
        EXPECT_EQ(saved(),
                  (nlohmann::json{record(false, "U1", 100, 5000, -10), record(true, "A2", 110, 5100, -30.5),
                                  record(true, "A3", 120, 5200, -5)}));
    }
    Amplifier amp(*this);
    amp.tellAmplifier(0);
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), edited);
}

TEST_F(CabsimModelTest, AFailedSaveLeavesTheOldFileAndWhatWasDirty) {
    Amplifier amp(*this);
    ASSERT_TRUE(amp.cabsim.setCabLevel(1, -30.0f));
    files.unwritable = "userCabsimConfig.json.tmp";
    EXPECT_FALSE(amp.cabsim.saveCurrentState());
    EXPECT_EQ(read(kFile), kUserConfig);
    EXPECT_EQ(amp.cabsim.getCabsimIRList(),
              (Slots{kUserSlots[0], dirty(factory("A2", 110, 5100, -30)), kUserSlots[2]}));
    files.unwritable.clear();
    EXPECT_TRUE(amp.cabsim.saveCurrentState());
    EXPECT_EQ(saved()[1], record(true, "A2", 110, 5100, -30));
}

TEST_F(CabsimModelTest, ASyncDropsWhatIsNotSavedAndEndsWithTheSelectedSlotInForce) {
    Amplifier amp(*this);
    amp.tellAmplifier(0);
    amp.cabsim.setVirtualCabsim(1);
    ASSERT_TRUE(amp.cabsim.assignUserIRToCabsim(1, "U1"));
    ASSERT_TRUE(amp.cabsim.setCabHPF(2, 300.0f));
    log.clear();
    EXPECT_TRUE(amp.cabsim.syncCurrentState());
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), kUserSlots);
    EXPECT_EQ(amp.cabsim.getVirtualCabsim(), 1u);
    EXPECT_EQ(engineCalls(), engineLines(kDirectory + std::string("A2"), 110, 5100, -11));
}

TEST_F(CabsimModelTest, ASyncWithoutAFileReloadsTheDefaults) {
    Amplifier amp(*this);
    amp.tellAmplifier(0);
    std::filesystem::remove(place(kFile));
    log.clear();
    EXPECT_TRUE(amp.cabsim.syncCurrentState());
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), kArvelDefaults);
    EXPECT_EQ(engineCalls(), engineLines(kDirectory + std::string("A1"), 30, 9000, -1));
}

TEST_F(CabsimModelTest, ASyncWithAFileThatCannotBeReadKeepsTheSlots) {
    Amplifier amp(*this);
    ASSERT_TRUE(amp.cabsim.setCabLevel(1, -30.0f));
    const Slots before = amp.cabsim.getCabsimIRList();
    write(kFile, "{");
    log.clear();
    EXPECT_FALSE(amp.cabsim.syncCurrentState());
    EXPECT_EQ(log.lines(), Lines{"Warn Failed to sync current cabsim state."});
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), before);
}

TEST_F(CabsimModelTest, ASyncEmptiesSlotsWhoseFileIsGone) {
    Amplifier amp(*this);
    amp.tellAmplifier(0);
    std::filesystem::remove(place("/mnt/user-data/userIRs/U1.wav"));
    EXPECT_TRUE(amp.cabsim.syncCurrentState());
    EXPECT_EQ(amp.cabsim.getCabsimIRList(), (Slots{CabsimIR{}, kUserSlots[1], kUserSlots[2]}));
}

// Settings

TEST_F(CabsimModelTest, AChangeOfTheReverbTaperGoesToTheEngineAndOneOfTheBrightSwitchToTheLog) {
    Amplifier amp(*this);
    log.clear();
    amp.settings.setReverbTaperType(2);
    EXPECT_EQ(engineCalls(), Lines{"Model: setReverbTaper(2)"});
    log.clear();
    amp.settings.setVibratoChannelBright(true);
    EXPECT_TRUE(engineCalls().empty());
    EXPECT_TRUE(log.has("CabsimModel: vibratoChannelBrightChangedHandler(1)"));
}

TEST_F(CabsimModelTest, AHandlerOfAChangeTakesTheValueThatIsStored) {
    Amplifier amp(*this);
    amp.settings.setReverbTaperType(2);
    log.clear();
    amp.cabsim.reverbTaperTypeChangedHandler(7);
    EXPECT_EQ(engineCalls(), Lines{"Model: setReverbTaper(2)"});
}

TEST_F(CabsimModelTest, ACabinetThatIsGoneHearsOfNoChange) {
    EngineOnCard engine;
    tvk::FactoryIRModel factoryIRs(engine.model(), storage);
    tvk::GlobalSettingsModel settings(storage);
    { const CabsimModel cabsim(engine.model(), settings, factoryIRs, storage); }
    log.clear();
    settings.setReverbTaperType(2);
    EXPECT_TRUE(engineCalls().empty());
}

// Threads

TEST_F(CabsimModelTest, WhoHoldsTheApplyLockIsNotInterruptedOnTheWayToTheEngine) {
    Amplifier amp(*this);
    amp.tellAmplifier(0);
    log.clear();
    std::thread client;
    {
        const CabsimModel::ApplyLock applying = amp.cabsim.lockApply();
        Model& model = amp.engine.model();
        const std::string path = amp.cabsim.getCabsimIRFilePath(1);
        client = std::thread([&amp] { amp.cabsim.setVirtualCabsim(2); });
        model.setCabsim(path);
        model.setCabsimHPF(amp.cabsim.getCabHPF(1));
        model.setCabsimLPF(amp.cabsim.getCabLPF(1));
        model.setCabsimLevel(amp.cabsim.getCabLevel(1));
    }
    client.join();
    Lines expected = engineLines(kDirectory + std::string("A2"), 110, 5100, -11);
    const Lines after = engineLines("/mnt/user-data/userIRs/U2", 120, 5200, -12);
    expected.insert(expected.end(), after.begin(), after.end());
    EXPECT_EQ(engineCalls(), expected);
}

TEST_F(CabsimModelTest, AfterAStormTheEngineTheSlotsAndTheFileAgree) {
    Amplifier amp(*this);
    amp.tellAmplifier(0);
    log.clear();
    constexpr int kRounds = 40;
    std::vector<std::thread> threads;
    const auto start = [&](auto call) {
        threads.emplace_back([call] {
            for (int round = 0; round < kRounds; ++round)
                call(round);
        });
    };
    CabsimModel& cabsim = amp.cabsim;
    start([&](int round) { cabsim.setVirtualCabsim(static_cast<std::uint32_t>(round % 3)); });
    start([&](int round) {
        cabsim.assignUserIRToCabsim(static_cast<std::uint32_t>(round % 3), round % 2 ? "U1" : "U2");
    });
    start([&](int round) {
        const auto slot = static_cast<std::uint32_t>(round % 3);
        cabsim.setCabHPF(slot, 20.0f + static_cast<float>(round));
        cabsim.setCabLPF(slot, 2000.0f + static_cast<float>(round));
        cabsim.setCabLevel(slot, -static_cast<float>(round % 30));
    });
    start([&](int round) {
        if (round % 4 == 0)
            cabsim.syncCurrentState();
        else
            cabsim.saveCurrentState();
    });
    start([&](int round) { amp.settings.setReverbTaperType(static_cast<unsigned>(round)); });
    start([&](int round) {
        amp.tellAmplifier(round % 2);
        cabsim.reapplyVirtualCabsim();
    });
    for (std::thread& thread : threads)
        thread.join();

    const CabsimIR inForce = cabsim.getCabsimIRList()[cabsim.getVirtualCabsim()];
    const auto lastOf = [this](const std::string& call) {
        return log.startingWith("Model: " + call + "(").back();
    };
    const Lines expected = engineLines(cabsim.getCabsimIRFilePath(cabsim.getVirtualCabsim()), inForce.hpf,
                                       inForce.lpf, inForce.level);
    EXPECT_EQ((Lines{lastOf("setCabsim"), lastOf("setCabsimHPF"), lastOf("setCabsimLPF"),
                     lastOf("setCabsimLevel")}),
              expected);
    EXPECT_EQ(lastOf("setReverbTaper"),
              "Model: setReverbTaper(" + std::to_string(amp.settings.getReverbTaperType()) + ")");
    ASSERT_TRUE(cabsim.saveCurrentState());
    const CabsimModel::Slots slots = cabsim.getCabsimIRList();
    ASSERT_TRUE(cabsim.syncCurrentState());
    EXPECT_EQ(cabsim.getCabsimIRList(), slots);
}

}  // namespace
