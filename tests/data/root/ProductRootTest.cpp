// The product files as shipped, read without the program's own readers.
#include <cmath>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

namespace {

nlohmann::json load(const std::string& name) {
    std::ifstream file(std::string(TARVEK_PRODUCT_ROOT) + "/" + name);
    return nlohmann::json::parse(file);
}

TEST(ProductRoot, ProfileHasEveryKeyWithItsType) {
    const nlohmann::json profile = load("product_profile.json");
    EXPECT_EQ(profile.at("productFamily"), "slatePanel");
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

struct Amplifier {
    const char* name;
    const char* catalogue;
    const char* defaults;
};

constexpr Amplifier kAmplifiers[] = {
    {"Arvel", "factoryIRsArvelSlate.json", "userCabsimDefaultsArvelSlate.json"},
    {"Corvin", "factoryIRsCorvinSlate.json", "userCabsimDefaultsCorvinSlate.json"},
    {"Lisko", "factoryIRsLisko.json", "userCabsimDefaultsLisko.json"},
    {"Sorrel", "factoryIRsSorrel.json", "userCabsimDefaultsSorrel.json"}};

std::set<std::string> namesOf(const Amplifier& amplifier) {
    std::set<std::string> names;
    const nlohmann::json catalogue = load(amplifier.catalogue);
    for (const auto& record : catalogue.at("factoryIRs"))
        names.insert(record.at("name"));
    return names;
}

TEST(ProductRoot, EveryCatalogueListsTheResponsesOfItsFolderAndNoOthers) {
    for (const Amplifier& amplifier : kAmplifiers) {
        const std::filesystem::path folder = std::filesystem::path(TARVEK_PRODUCT_ROOT) / "factoryIRs" /
                                             (std::string(amplifier.name) + "-SlatePanel-IRs");
        std::set<std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            EXPECT_EQ(entry.path().extension(), ".wav");
            files.insert(entry.path().stem().string());
        }
        EXPECT_EQ(namesOf(amplifier), files) << amplifier.name;
        EXPECT_GE(files.size(), 3U);
    }
}

TEST(ProductRoot, TheSwitchStartsWithThreeDifferentCabinetsOfItsAmplifier) {
    for (const Amplifier& amplifier : kAmplifiers) {
        const std::set<std::string> names = namesOf(amplifier);
        std::set<std::string> slots;
        const nlohmann::json defaults = load(amplifier.defaults);
        for (const auto& slot : defaults.at("cabsimIRs")) {
            EXPECT_EQ(slot.at("isFactory"), true);
            EXPECT_EQ(slot.at("isDirty"), false);
            EXPECT_EQ(slot.at("level"), -5.0);
            EXPECT_GE(slot.at("hpf"), 20.0);
            EXPECT_LE(slot.at("hpf"), 500.0);
            EXPECT_GE(slot.at("lpf"), 1000.0);
            EXPECT_LE(slot.at("lpf"), 20000.0);
            EXPECT_TRUE(names.contains(slot.at("irName"))) << slot.at("irName");
            slots.insert(slot.at("irName"));
        }
        EXPECT_EQ(slots.size(), 3U) << amplifier.name;
    }
}

TEST(ProductRoot, TheFirmwareTellsItsVersion) {
    std::ifstream file(std::string(TARVEK_PRODUCT_ROOT) + "/release-version");
    std::string version;
    ASSERT_TRUE(std::getline(file, version));
    EXPECT_EQ(version, TARVEK_PROJECT_VERSION);
}

}  // namespace
