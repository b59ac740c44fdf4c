#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "core/System/DspUnitInputVoltageMappingConfig.h"
#include "shared/DspUnitInfo/DefaultDspUnitDatabase.h"
#include "support/LogRecorder.h"

namespace {

using Json = nlohmann::ordered_json;

TEST(DefaultDspUnitDatabase, TheDefaultIsAStereoPassThroughNamedUnknown) {
    const LogRecorder log;
    const DefaultDspUnitDatabase database;
    EXPECT_EQ(Json::parse(database.getDefinition("Default"))["info"]["displayName"], "unknown");

    constexpr int kBlock = 4;
    const auto unit = database.createDspUnit("DUBS_Nonesuch", kBlock, 44100.0f);
    EXPECT_EQ(unit->getTarvekId(), "Default");
    float left[kBlock] = {0.1f, 0.2f, 0.3f, 0.4f};
    float right[kBlock] = {-1.0f, -2.0f, -3.0f, -4.0f};
    unit->connectInput(0, left, 1);
    unit->connectInput(1, right, 2);
    unit->process();
    for (int n = 0; n < kBlock; ++n) {
        EXPECT_EQ(unit->getOutputAddr(0)[n], left[n]);
        EXPECT_EQ(unit->getOutputAddr(1)[n], right[n]);
    }
}

TEST(DefaultDspUnitDatabase, HoldsTheUtilityUnitsAndTheProductsOwn) {
    const DefaultDspUnitDatabase database;
    for (const char* id : {"Default", "PassthruMono", "PassthruStereo", "Sum2", "Fanout2", "DU_StereoAdder",
                           "DU_StereoMixer", "DUBS_Passthru", "DUBS_IRLoader", "DUBS_NorvaneArvelReverb65"})
        EXPECT_TRUE(database.contains(id)) << id;
}

TEST(DefaultDspUnitDatabase, TheFlagshipsControlsStandInTheOrderOfThePanel) {
    const std::vector<std::string> expected{
        "idNormalVol",  "idNormalTreb",  "idNormalMid",  "idNormalBass",  "idNormalBright",
        "idVibratoVol", "idVibratoTreb", "idVibratoMid", "idVibratoBass", "idVibratoBright",
        "idReverb",     "idReverbMute",  "idSpeed",      "idIntensity",   "idTremoloMute"};
    const DefaultDspUnitDatabase database;
    std::vector<std::string> got;
    const Json definition = Json::parse(database.getDefinition("DUBS_NorvaneArvelReverb65"));
    for (const auto& control : definition["ui"]["uiParameters"])
        got.push_back(control["controlId"]);
    EXPECT_EQ(got, expected);
}

TEST(DspUnitInputVoltageMappingConfig, IsAnErrorToReadBeforeItIsSet) {
    LogRecorder log;
    EXPECT_EQ(DspUnitInputVoltageMappingConfig::get(), 0.0f);
    EXPECT_EQ(log.startingWith("Error").size(), 1u);
    DspUnitInputVoltageMappingConfig::set(1.25f);
    EXPECT_EQ(DspUnitInputVoltageMappingConfig::get(), 1.25f);
    EXPECT_EQ(log.startingWith("Error").size(), 1u);
    EXPECT_EQ(DspUnitInputVoltageMappingConfig::getPreGain(), 0.0f);
    EXPECT_EQ(DspUnitInputVoltageMappingConfig::getPostGain(), 0.0f);
}

}  // namespace
