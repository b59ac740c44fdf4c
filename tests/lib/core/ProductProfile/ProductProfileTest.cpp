#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/ProductProfile/ProductProfile.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"

namespace {

using testing::ElementsAre;
using testing::Pair;
using testing::StartsWith;

// Writes a profile and reads it.
class Profile {
public:
    explicit Profile(const std::string& json) { std::ofstream(path_) << json; }
    ProductProfile read() const { return ProductProfile(path_); }

private:
    TemporaryFolder folder_;
    std::string path_ = folder_.file("product_profile.json");
};

const char* const kNumbers =
    R"("productFamily":"norvane","inputVoltageMapping":1.2,"preFxHeadRoomEnable":true,"dreGainDeltaDb":20,)"
    R"("drePreGainLowGainPath":1.5,"deemphGainDcDb":2,"deemphGainPiDb":-3,"deemphF0Hz":4000,"bluetoothAuxInAttenuationDb":-6,)"
    R"("frontPanelKnobClass":"QNC","instrumentGainDb":7,"headphonesGainDb":8,"limiterAttackTc":0.001,"limiterReleaseTc":0.1,)"
    R"("limiterThresholdDb":-1,"limiterLookaheadSeconds":0.002,"limiterCrossoverFrequencyHz":150)";

// A whole profile; further members begin with a comma.
std::string withMenus(const std::string& members) {
    return std::string("{").append(kNumbers).append(members) + "}";
}

void expectDefaults(const ProductProfile& profile) {
    EXPECT_EQ(profile.getProductFamily(), "ostrel");
    EXPECT_EQ(profile.getFrontPanelKnobClass(), "QNB");
    EXPECT_FALSE(profile.getPreFxHeadRoomEnable());
    for (float number :
         {profile.getInputVoltageMapping(), profile.getDreGainDeltaDb(), profile.getDrePreGainLowGainPath(),
          profile.getDeemphGainDcDb(), profile.getDeemphGainPiDb(), profile.getDeemphF0Hz(),
          profile.getBluetoothAuxInAttenuationDb(), profile.getInstrumentGainDb(),
          profile.getHeadphonesGainDb(), profile.getLimiterAttackTc(), profile.getLimiterReleaseTc(),
          profile.getLimiterThresholdDb(), profile.getLimiterLookaheadSeconds(),
          profile.getLimiterCrossoverFrequencyHz()})
        EXPECT_EQ(number, 0.0f);
    EXPECT_TRUE(profile.getEffectCategories().empty());
    EXPECT_TRUE(profile.getAmpDspUnits().empty());
    EXPECT_TRUE(profile.getGlobalEq().empty());
    EXPECT_TRUE(profile.getGlobalFxAssign().empty());
    EXPECT_TRUE(profile.getGlobalFxAssignRtk7().empty());
}

TEST(ProductProfile, WithoutAFileTheDefaultsStand) {
    LogRecorder log;
    expectDefaults(ProductProfile("/nowhere/product_profile.json"));
    EXPECT_THAT(log.lines(), ElementsAre("Warn problem reading settings, /nowhere/product_profile.json"));
}

TEST(ProductProfile, AFileThatIsNoJsonLeavesTheDefaults) {
    LogRecorder log;
    expectDefaults(Profile("{\"productFamily\":").read());
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_THAT(log.lines()[0], StartsWith("Warn problem reading settings, [json.exception.parse_error"));
}

TEST(ProductProfile, ReadsEveryNumberAndText) {
    LogRecorder log;
    const ProductProfile profile = Profile(withMenus("")).read();
    EXPECT_EQ(profile.getProductFamily(), "norvane");
    EXPECT_EQ(profile.getInputVoltageMapping(), 1.2f);
    EXPECT_TRUE(profile.getPreFxHeadRoomEnable());
    EXPECT_EQ(profile.getDreGainDeltaDb(), 20.0f);
    EXPECT_EQ(profile.getDrePreGainLowGainPath(), 1.5f);
    EXPECT_EQ(profile.getDeemphGainDcDb(), 2.0f);
    EXPECT_EQ(profile.getDeemphGainPiDb(), -3.0f);
    EXPECT_EQ(profile.getDeemphF0Hz(), 4000.0f);
    EXPECT_EQ(profile.getBluetoothAuxInAttenuationDb(), -6.0f);
    EXPECT_EQ(profile.getFrontPanelKnobClass(), "QNC");
    EXPECT_EQ(profile.getInstrumentGainDb(), 7.0f);
    EXPECT_EQ(profile.getHeadphonesGainDb(), 8.0f);
    EXPECT_EQ(profile.getLimiterAttackTc(), 0.001f);
    EXPECT_EQ(profile.getLimiterReleaseTc(), 0.1f);
    EXPECT_EQ(profile.getLimiterThresholdDb(), -1.0f);
    EXPECT_EQ(profile.getLimiterLookaheadSeconds(), 0.002f);
    EXPECT_EQ(profile.getLimiterCrossoverFrequencyHz(), 150.0f);
    EXPECT_TRUE(log.startingWith("Warn").empty()) << "menus are for products that have them";
}

TEST(ProductProfile, EachMissingKeyWarnsAndKeepsItsDefault) {
    LogRecorder log;
    const ProductProfile profile = Profile(R"({"dreGainDeltaDb":12})").read();
    EXPECT_EQ(profile.getDreGainDeltaDb(), 12.0f);
    EXPECT_EQ(profile.getProductFamily(), "ostrel");
    EXPECT_TRUE(log.has("Warn Failed to get value at key \"productFamily\"."));
    EXPECT_TRUE(log.has("Warn Key not found: \"preFxHeadRoomEnable\"."));
    EXPECT_EQ(log.startingWith("Warn").size(), 16u);
}

TEST(ProductProfile, ReadsTheMenus) {
    LogRecorder log;
    const ProductProfile profile =
        Profile(
            withMenus(
                R"(,"effectCategories":[{"categoryName":"Delay","menuName18Max":"DELAY","dspUnits":[)"
                R"({"TarvekId":"DUBS_MonoDelay","menuName18Max":"Mono"},{"TarvekId":"DUBS_ModDelay","menuName18Max":"Mod"}]}],)"
                R"("amp":{"dspUnits":[{"TarvekId":"DUBS_NorvaneArvelReverb65","menuName18Max":"Arvel"}]},)"
                R"("GlobalEQ":[{"id":"DUBS_EQ31","menuName18Max":"EQ"}],)"
                R"("globalFxAssign":[{"menuName18Max":"Menu","first":"a","second":"b","third":"c","fourth":"d"}],)"
                R"("globalFxAssignRtk7":[{"first":"1","second":"2","third":"3","fourth":"4","fifth":"5"}])"))
            .read();
    ASSERT_EQ(profile.getEffectCategories().size(), 1u);
    const FxCategoryData& category = profile.getEffectCategories()[0];
    EXPECT_EQ(category.categoryName, "Delay");
    EXPECT_EQ(category.menuName18Max, "DELAY");
    EXPECT_THAT(category.dspUnits, ElementsAre(Pair("DUBS_MonoDelay", "Mono"), Pair("DUBS_ModDelay", "Mod")));
    EXPECT_THAT(profile.getAmpDspUnits(), ElementsAre(Pair("DUBS_NorvaneArvelReverb65", "Arvel")));
    EXPECT_THAT(profile.getGlobalEq(), ElementsAre(Pair("DUBS_EQ31", "EQ")));
    ASSERT_EQ(profile.getGlobalFxAssign().size(), 1u);
    EXPECT_EQ(profile.getGlobalFxAssign()[0].menuName, "Menu");
    EXPECT_THAT(profile.getGlobalFxAssign()[0].slots, ElementsAre("a", "b", "c", "", ""));
    ASSERT_EQ(profile.getGlobalFxAssignRtk7().size(), 1u);
    EXPECT_THAT(profile.getGlobalFxAssignRtk7()[0].slots, ElementsAre("1", "2", "3", "4", "5"));
    EXPECT_TRUE(log.has("ProductProfile: GLobal FX Assign Menu name: Menu"));
    EXPECT_TRUE(log.startingWith("Warn").empty());
}

TEST(ProductProfile, FaultyItemsAreLoggedAndLeftOut) {
    LogRecorder log;
    const ProductProfile profile =
        Profile(
            withMenus(
                R"(,"effectCategories":[{"categoryName":"A","menuName18Max":"A"},)"
                R"({"categoryName":"B","menuName18Max":"B","dspUnits":[7,{"TarvekId":"u","menuName18Max":"U"}]}],)"
                R"("amp":{"dspUnits":["x"]},"GlobalEQ":[{}],"globalFxAssign":[null],"globalFxAssignRtk7":[[]])"))
            .read();
    EXPECT_THAT(
        log.startingWith("Warn"),
        ElementsAre("Warn Effect Categories: dspUnits array not found: A",
                    "Warn problem with dspUnits array item",
                    "Warn problem with Amp getAmpDspUnitFromArchive array item",
                    "Warn problem with GlobalEQ array item", "Warn problem with GlobalFXAssign array item",
                    "Warn problem with GlobalFXAssignRtk7 array item"));
    ASSERT_EQ(profile.getEffectCategories().size(), 1u);
    EXPECT_THAT(profile.getEffectCategories()[0].dspUnits, ElementsAre(Pair("u", "U")));
    EXPECT_TRUE(profile.getAmpDspUnits().empty());
    EXPECT_TRUE(profile.getGlobalEq().empty());
    EXPECT_TRUE(profile.getGlobalFxAssign().empty());
    EXPECT_TRUE(profile.getGlobalFxAssignRtk7().empty());
}

TEST(ProductProfile, AnAmpEntryWithoutUnitsIsLogged) {
    LogRecorder log;
    Profile(withMenus(R"(,"amp":{})")).read();
    EXPECT_THAT(log.startingWith("Warn"), ElementsAre("Warn dspUnits array in Amps not found"));
}

TEST(ProductProfile, PrintsEveryValue) {
    const ProductProfile profile =
        Profile(
            withMenus(R"(,"effectCategories":[{"categoryName":"Delay","menuName18Max":"D","dspUnits":[]}],)"
                      R"("GlobalEQ":[{"id":"DUBS_EQ31","menuName18Max":"EQ"}])"))
            .read();
    LogRecorder log;
    profile.print();
    std::vector<std::string> texts;
    for (const std::string& line : log.startingWith("ProductProfile: "))
        texts.push_back(line.substr(16));
    EXPECT_THAT(texts,
                ElementsAre("productFamily = norvane", "inputVoltageMapping = 1.200000",
                            "dreGainDeltaDb = 20.000000", "drePreGainLowGainPath = 1.500000",
                            "deemphGainDcDb = 2.000000", "deemphGainPiDb = -3.000000",
                            "deemphF0Hz = 4000.000000", "bluetoothAuxInAttenuationDb = -6.000000",
                            "frontPanelKnobClass = QNC", "headphonesGainDb = 8.000000",
                            "instrumentGainDb = 7.000000", "limiterAttackTc = 0.001000",
                            "limiterReleaseTc = 0.100000", "limiterThresholdDb = -1.000000",
                            "limiterLookaheadSeconds = 0.002000", "limiterCrossoverFrequencyHz = 150.000000",
                            "effectCategories: id = Delay", "GlobalEQ: id = DUBS_EQ31, menuName18Max = EQ"));
}

}  // namespace
