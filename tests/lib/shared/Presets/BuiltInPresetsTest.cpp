#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "shared/Presets/BuiltInPresets.h"

namespace {

using Json = nlohmann::ordered_json;
constexpr char kHead[] =
    R"({"nodeType":"preset","nodeId":"preset","version":"1.1","numInputs":2,"numOutputs":2,)";

TEST(BuiltInPresets, EverySlotBeginsAsAPresetDoesWithoutIndentation) {
    for (int slot = 0; slot < tvk::kBuiltInPresets; ++slot) {
        const std::string text = tvk::builtInPreset(slot);
        EXPECT_EQ(text.rfind(kHead, 0), 0u) << slot;
        EXPECT_EQ(text, Json::parse(text).dump()) << slot;
    }
}

TEST(BuiltInPresets, OtherSlotsAreEmpty) {
    EXPECT_EQ(tvk::builtInPreset(-1), nullptr);
    EXPECT_EQ(tvk::builtInPreset(5), nullptr);
}

TEST(BuiltInPresets, EachSlotNamesItsAmplifier) {
    const struct {
        const char* displayName;
        const char* unit;
    } expected[] = {{"Norvane Test Mode", "DUBS_NorvaneTestMode"},
                    {"Norvane Corvin Reverb", "DUBS_NorvaneCorvinReverb65"},
                    {"Norvane Arvel Reverb", "DUBS_NorvaneArvelReverb65"},
                    {"Norvane Lisko Reverb", "DUBS_NorvaneLiskoReverb65"},
                    {"Norvane Sorrel Reverb", "DUBS_QNSorrelReverb"}};
    for (int slot = 0; slot < tvk::kBuiltInPresets; ++slot) {
        const Json preset = Json::parse(tvk::builtInPreset(slot));
        EXPECT_EQ(preset["info"]["displayName"], expected[slot].displayName);
        ASSERT_EQ(preset["audioGraph"]["nodes"].size(), 1u);
        EXPECT_EQ(preset["audioGraph"]["nodes"][0]["nodeId"], "DUBS_LinearGain_1");
        EXPECT_EQ(preset["audioGraph"]["nodes"][0]["TarvekId"], expected[slot].unit);
    }
}

TEST(BuiltInPresets, EachIsWiredChannelForChannel) {
    for (int slot = 0; slot < tvk::kBuiltInPresets; ++slot) {
        const Json edges = Json::parse(tvk::builtInPreset(slot))["audioGraph"]["connections"];
        ASSERT_EQ(edges.size(), 4u);
        for (size_t i = 0; i < 4; ++i) {
            const bool isIn = i < 2;
            EXPECT_EQ(edges[i]["input"]["nodeId"], isIn ? "preset" : "DUBS_LinearGain_1");
            EXPECT_EQ(edges[i]["output"]["nodeId"], isIn ? "DUBS_LinearGain_1" : "preset");
            EXPECT_EQ(edges[i]["input"]["index"], i % 2);
            EXPECT_EQ(edges[i]["output"]["index"], i % 2);
        }
    }
}

TEST(BuiltInPresets, IdentitiesDiffer) {
    std::set<std::string> ids;
    for (int slot = 0; slot < tvk::kBuiltInPresets; ++slot) {
        const std::string id = Json::parse(tvk::builtInPreset(slot))["info"]["preset_id"];
        EXPECT_EQ(id.size(), 36u);
        ids.insert(id);
    }
    EXPECT_EQ(ids.size(), static_cast<size_t>(tvk::kBuiltInPresets));
}

TEST(BuiltInPresets, VolumesComeUpAtZeroAndTonesInTheMiddle) {
    const Json parameters = Json::parse(tvk::builtInPreset(2))["audioGraph"]["nodes"][0]["dspUnitParameters"];
    for (const char* zero : {"idNormalVol", "idVibratoVol", "idReverb", "idSpeed", "idIntensity"})
        EXPECT_EQ(parameters.at(zero), 0) << zero;
    for (const char* half :
         {"idNormalTreb", "idNormalMid", "idNormalBass", "idVibratoTreb", "idVibratoMid", "idVibratoBass"})
        EXPECT_EQ(parameters.at(half), 0.5) << half;
    EXPECT_EQ(parameters.at("idCabinet"), "none");
}

}  // namespace
