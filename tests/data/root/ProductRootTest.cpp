// The product files as shipped, read without the program's own readers.
#include <cmath>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>

namespace {

nlohmann::json load(const std::string& name) {
    std::ifstream file(std::string(TARVEK_PRODUCT_ROOT) + "/" + name);
    return nlohmann::json::parse(file);
}

TEST(ProductRoot, ProfileHasEveryKeyWithItsType) {
    const nlohmann::json profile = load("product_profile.json");
    EXPECT_EQ(profile.at("productFamily"), "ostrel");
    EXPECT_EQ(profile.at("frontPanelKnobClass"), "QNB");
    EXPECT_TRUE(profile.at("preFxHeadRoomEnable").is_boolean());
    for (const char* key : {"inputVoltageMapping", "dreGainDeltaDb", "drePreGainLowGainPath",
                            "deemphGainDcDb", "deemphGainPiDb", "deemphF0Hz", "bluetoothAuxInAttenuationDb",
                            "instrumentGainDb", "headphonesGainDb", "limiterAttackTc", "limiterReleaseTc",
                            "limiterThresholdDb", "limiterLookaheadSeconds", "limiterCrossoverFrequencyHz"})
        EXPECT_TRUE(profile.at(key).is_number()) << key;
    for (const char* key : {"effectCategories", "GlobalEQ", "globalFxAssign", "globalFxAssignRtk7"})
        EXPECT_TRUE(profile.at(key).is_array()) << key;
    EXPECT_TRUE(profile.at("amp").at("dspUnits").is_array());
}

TEST(ProductRoot, GuitarPeakingAtMinus12DbfsStandsForThreeHundredMillivolts) {
    const double mapping = load("product_profile.json").at("inputVoltageMapping");
    EXPECT_NEAR(mapping * std::pow(10.0, -12.0 / 20.0), 0.300, 0.001);
}

TEST(ProductRoot, MenuTextsFitTheirEighteenCharacters) {
    const nlohmann::json profile = load("product_profile.json");
    const auto fits = [](const nlohmann::json& item) {
        const std::string text = item.at("menuName18Max");
        EXPECT_FALSE(text.empty());
        EXPECT_LE(text.size(), 18U) << text;
    };
    for (const auto& category : profile.at("effectCategories")) {
        fits(category);
        for (const auto& unit : category.at("dspUnits"))
            fits(unit);
    }
    for (const auto& unit : profile.at("amp").at("dspUnits"))
        fits(unit);
    for (const auto& equaliser : profile.at("GlobalEQ"))
        fits(equaliser);
}

TEST(ProductRoot, CostTableKnowsEveryUnitAndTheFlagshipFitsTheBudget) {
    const nlohmann::json table = load("PU_Ostrel_RX.json");
    const double budget = table.at("utilizationBudget");
    EXPECT_EQ(budget, 95.0);
    std::map<std::string, double> costs;
    for (const auto& module : table.at("modules"))
        costs[module.at("tarvekId")] = module.at("utilizationPercentage");
    for (const char* id : {"Default", "Sum2", "Fanout2", "PassthruMono", "PassthruStereo", "DU_StereoAdder",
                           "DU_StereoMixer", "DUBS_Passthru", "DUBS_IRLoader", "DUBS_NorvaneArvelReverb65"}) {
        ASSERT_TRUE(costs.contains(id)) << id;
        EXPECT_GT(costs[id], 0.0) << id;
    }
    EXPECT_LE(costs["DUBS_NorvaneArvelReverb65"], budget);
}

}  // namespace
