#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>
#include <string>
#include <variant>
#include <vector>

#include "algorithms/modulation/OpticalTremoloCell.h"
#include "algorithms/modulation/TremoloHarmonic.h"
#include "algorithms/modulation/TremoloSine.h"
#include "algorithms/modulation/TremoloVintage.h"
#include "core/Parameter/Parameter.h"
#include "core/units/modulation/DUBS_CorvinTremolo.h"
#include "core/units/modulation/DUBS_QNCorvin65Tremolo.h"
#include "core/units/modulation/DUBS_SineTremolo.h"
#include "core/units/modulation/DUBS_SineTremoloStereo.h"
#include "core/units/modulation/DUBS_TremoloHarmonic.h"
#include "core/units/modulation/DUBS_TremoloHarmonicStereo.h"
#include "core/units/modulation/DUBS_TremoloOptical.h"
#include "core/units/modulation/DUBS_TremoloOpticalStereo.h"
#include "core/units/modulation/DUBS_VintageTremolo.h"
#include "support/LogRecorder.h"

namespace {

constexpr int kBlock = 32;
constexpr float kRate = 44100.0f;

struct Control {
    const char* parameter;
    const char* logName;
    std::variant<float, std::string> initial;
};

struct Type {
    std::string id;
    std::unique_ptr<DspUnitBypassStereo> (*make)();
    std::vector<Control> controls;
    friend void PrintTo(const Type& type, std::ostream* out) { *out << type.id; }
};

template <typename Unit>
std::unique_ptr<DspUnitBypassStereo> make() {
    return std::make_unique<Unit>("id", kBlock, kRate);
}

using std::string_literals::operator""s;

const std::vector<Type>& types() {
    static const std::vector<Type> kTypes{
        {"DUBS_VintageTremolo",
         make<DUBS_VintageTremolo>,
         {{"level", "Level", 0.86f},
          {"rate", "Rate", 7.21f},
          {"noteDivision", "Note Division", "off"s},
          {"duty", "Duty", 0.5f},
          {"attack", "Attack", 0.96f},
          {"release", "Release", 0.94f}}},
        {"DUBS_SineTremolo",
         make<DUBS_SineTremolo>,
         {{"level", "Level", 0.86f},
          {"rate", "Rate", 6.56f},
          {"noteDivision", "Note Division", "off"s},
          {"duty", "Duty", 0.5f},
          {"dist", "Dist", 0.0f},
          {"shape", "Shape", 0.0f}}},
        {"DUBS_SineTremoloStereo",
         make<DUBS_SineTremoloStereo>,
         {{"rate", "Rate", 6.56f},
          {"level", "Level", 0.86f},
          {"duty", "Duty", 0.5f},
          {"dist", "Dist", 0.0f},
          {"shape", "Shape", 0.0f}}},
        {"DUBS_TremoloHarmonic",
         make<DUBS_TremoloHarmonic>,
         {{"speed", "Speed", 4.05f},
          {"noteDivision", "Note Division", "off"s},
          {"intensity", "Intensity", 0.78f},
          {"shape", "Shape", 0.44f},
          {"mode", "Mode", "6G4A"s}}},
        {"DUBS_TremoloHarmonicStereo",
         make<DUBS_TremoloHarmonicStereo>,
         {{"speed", "Speed", 4.05f},
          {"intensity", "Intensity", 0.78f},
          {"shape", "Shape", 0.44f},
          {"mode", "Mode", "6G4A"s}}},
        {"DUBS_TremoloOptical",
         make<DUBS_TremoloOptical>,
         {{"rate", "Rate", 6.56f}, {"level", "Level", 0.86f}}},
        {"DUBS_TremoloOpticalStereo",
         make<DUBS_TremoloOpticalStereo>,
         {{"rate", "Rate", 6.56f}, {"level", "Level", 0.86f}}},
        {"DUBS_QNCorvin65Tremolo",
         make<DUBS_QNCorvin65Tremolo>,
         {{"speed", "Speed", 0.3f}, {"intensity", "Intensity", 0.3f}}},
        {"DUBS_CorvinTremolo", make<DUBS_CorvinTremolo>, {{"rate", "Rate", 0.0f}, {"level", "Level", 0.5f}}},
    };
    return kTypes;
}

template <typename T>
Parameter<T>& parameter(DspUnitBypassStereo& unit, const char* name) {
    return dynamic_cast<Parameter<T>&>(*unit.getParameter(name));
}

struct Stereo {
    std::vector<float> left;
    std::vector<float> right;
    bool operator==(const Stereo&) const = default;
};

// What comes out for two steady tones of different level.
template <typename Core>
Stereo run(Core& core, int blocks) {
    Stereo out;
    for (int b = 0; b < blocks; ++b) {
        std::vector<float> left(kBlock), right(kBlock);
        for (int n = 0; n < kBlock; ++n) {
            left[n] = 0.8f * std::sin(0.05f * static_cast<float>(b * kBlock + n));
            right[n] = 0.3f * std::cos(0.02f * static_cast<float>(b * kBlock + n));
        }
        core.process(left.data(), right.data(), left.data(), right.data());
        out.left.insert(out.left.end(), left.begin(), left.end());
        out.right.insert(out.right.end(), right.begin(), right.end());
    }
    return out;
}

class TremoloUnit : public testing::TestWithParam<Type> {};

TEST_P(TremoloUnit, HasItsControlsWithTheirFirstValues) {
    const auto unit = GetParam().make();
    for (const Control& control : GetParam().controls) {
        if (const float* number = std::get_if<float>(&control.initial))
            EXPECT_EQ(parameter<float>(*unit, control.parameter).get(), *number) << control.parameter;
        else
            EXPECT_EQ(parameter<std::string>(*unit, control.parameter).get(),
                      std::get<std::string>(control.initial))
                << control.parameter;
    }
}

TEST_P(TremoloUnit, LogsItsControlsUnderItsId) {
    const auto unit = GetParam().make();
    for (const Control& control : GetParam().controls) {
        const LogRecorder log;
        std::string value;
        if (const float* number = std::get_if<float>(&control.initial)) {
            parameter<float>(*unit, control.parameter).set(*number);
            parameter<float>(*unit, control.parameter).init(*number);
            value = std::to_string(*number);
        } else {
            value = std::get<std::string>(control.initial);
            parameter<std::string>(*unit, control.parameter).set(value);
            parameter<std::string>(*unit, control.parameter).init(value);
        }
        const std::string start = GetParam().id + ": " + control.logName;
        EXPECT_EQ(log.startingWith(GetParam().id),
                  (std::vector<std::string>{start + " set, " + value, start + " init, " + value}));
    }
}

TEST_P(TremoloUnit, RestartsOnReset) {
    const auto unit = GetParam().make();
    const Stereo first = run(*unit, 300);
    run(*unit, 33);
    unit->reset();
    const Stereo again = run(*unit, 300);
    for (size_t n = 0; n < first.left.size(); ++n)
        ASSERT_NEAR(again.left[n], first.left[n], 1e-5f) << n;
}

INSTANTIATE_TEST_SUITE_P(All, TremoloUnit, testing::ValuesIn(types()),
                         [](const auto& instance) { return instance.param.id; });

TEST(DUBS_VintageTremolo, RunsTheVintageCoreAtItsKnobs) {
    DUBS_VintageTremolo unit("id", kBlock, kRate);
    TremoloVintage core(kBlock, kRate);
    core.setLevel(0.7f, true);
    core.setRate(3.0f, true);
    core.setDuty(0.2f, true);
    core.setAttack(0.3f);
    core.setRelease(0.4f);
    parameter<float>(unit, "level").init(0.7f);
    parameter<float>(unit, "rate").init(3.0f);
    parameter<float>(unit, "duty").init(0.2f);
    parameter<float>(unit, "attack").init(0.3f);
    parameter<float>(unit, "release").init(0.4f);
    EXPECT_EQ(run(unit, 300), run(core, 300));
}

template <typename Unit>
void expectSineCore() {
    Unit unit("id", kBlock, kRate);
    TremoloSine core(kBlock, kRate);
    core.setLevel(0.7f, true);
    core.setRate(4.0f, true);
    core.setDuty(0.2f, true);
    core.setClip(0.3f, true);
    core.setDist(0.9f, true);
    parameter<float>(unit, "level").init(0.7f);
    parameter<float>(unit, "rate").init(4.0f);
    parameter<float>(unit, "duty").init(0.2f);
    parameter<float>(unit, "dist").init(0.3f);
    parameter<float>(unit, "shape").init(0.9f);
    EXPECT_EQ(run(unit, 300), run(core, 300));
}

TEST(DUBS_SineTremolo, DrivesTheClipByDistAndTheSecondPhaseByShape) {
    expectSineCore<DUBS_SineTremolo>();
}

TEST(DUBS_SineTremoloStereo, DrivesTheClipByDistAndTheSecondPhaseByShape) {
    expectSineCore<DUBS_SineTremoloStereo>();
}

template <typename Unit>
void expectHarmonicCore() {
    Unit unit("id", kBlock, kRate);
    TremoloHarmonic core(kBlock, kRate);
    core.setSpeed(2.0f, true);
    core.setIntensity(0.6f, true);
    core.setShape(0.9f, true);
    core.setMode("6G4");
    parameter<float>(unit, "speed").init(2.0f);
    parameter<float>(unit, "intensity").init(0.6f);
    parameter<float>(unit, "shape").init(0.9f);
    parameter<std::string>(unit, "mode").init("6G4");
    EXPECT_EQ(run(unit, 300), run(core, 300));
}

TEST(DUBS_TremoloHarmonic, RunsTheHarmonicCoreAtItsKnobs) {
    expectHarmonicCore<DUBS_TremoloHarmonic>();
}

TEST(DUBS_TremoloHarmonicStereo, RunsTheHarmonicCoreAtItsKnobs) {
    expectHarmonicCore<DUBS_TremoloHarmonicStereo>();
}

TEST(DUBS_QNCorvin65Tremolo, RunsTheOpticalCellInMono) {
    DUBS_QNCorvin65Tremolo unit("id", kBlock, kRate);
    OpticalTremoloCell cell(kBlock, kRate, {2.0f, 10.0f, 0.14125f, 0.19054f});
    parameter<float>(unit, "speed").init(0.8f);
    parameter<float>(unit, "intensity").init(0.9f);
    cell.setSpeed(0.8f, true);
    cell.setIntensity(0.9f, true);
    const Stereo out = run(unit, 300);
    EXPECT_EQ(out, run(cell, 300));
    EXPECT_EQ(out.left, out.right);
}

TEST(DUBS_CorvinTremolo, RunsTheOpticalCellInMono) {
    DUBS_CorvinTremolo unit("id", kBlock, kRate);
    OpticalTremoloCell cell(kBlock, kRate, {2.0f, 10.0f, 0.14125f, 0.19054f});
    parameter<float>(unit, "rate").init(0.8f);
    parameter<float>(unit, "level").init(0.9f);
    cell.setSpeed(0.8f, true);
    cell.setIntensity(0.9f, true);
    const Stereo out = run(unit, 300);
    EXPECT_EQ(out, run(cell, 300));
    EXPECT_EQ(out.left, out.right);
}

// How often the output for a steady 1 falls to the cell's darkest, in `seconds`.
template <typename Unit>
int beats(Unit& unit, int seconds) {
    int count = 0;
    bool wasUp = false;
    for (int b = 0; b < seconds * 44100 / kBlock; ++b) {
        std::vector<float> left(kBlock, 1.0f), right(kBlock, 1.0f);
        unit.process(left.data(), right.data(), left.data(), right.data());
        for (const float x : left) {
            if (x > 0.8f) wasUp = true;
            if (x < 0.5f && wasUp) {
                wasUp = false;
                ++count;
            }
        }
    }
    return count;
}

TEST(DUBS_TremoloOptical, BeatsAtItsRateInMono) {
    for (const float hz : {1.75f, 4.0f, 8.5f}) {
        DUBS_TremoloOptical unit("id", kBlock, kRate);
        parameter<float>(unit, "rate").init(hz);
        parameter<float>(unit, "level").init(1.0f);
        EXPECT_NEAR(beats(unit, 20), 20.0f * hz, 1.01f) << hz;
        const Stereo out = run(unit, 50);
        EXPECT_EQ(out.left, out.right);
    }
}

TEST(DUBS_TremoloOpticalStereo, BeatsAtItsRateWithOneGainForBothChannels) {
    for (const float hz : {1.75f, 4.0f, 8.5f}) {
        DUBS_TremoloOpticalStereo unit("id", kBlock, kRate);
        parameter<float>(unit, "rate").init(hz);
        parameter<float>(unit, "level").init(1.0f);
        EXPECT_NEAR(beats(unit, 20), 20.0f * hz, 1.01f) << hz;
        for (int b = 0; b < 300; ++b) {
            std::vector<float> left(kBlock, 1.0f), right(kBlock, -0.5f);
            unit.process(left.data(), right.data(), left.data(), right.data());
            for (int n = 0; n < kBlock; ++n)
                ASSERT_EQ(right[n], -0.5f * left[n]);
        }
    }
}

TEST(DUBS_SineTremolo, BeatsAtTheTappedTempo) {
    DUBS_SineTremolo unit("id", kBlock, kRate);
    parameter<float>(unit, "level").init(1.0f);
    parameter<float>(unit, "tapTime").init(0.25f);
    EXPECT_NEAR(beats(unit, 20), 80, 1.01f);
    parameter<std::string>(unit, "noteDivision").init("eighth");
    parameter<float>(unit, "tapTimeBPM").init(90.0f);
    EXPECT_NEAR(beats(unit, 20), 60, 1.01f);
}

TEST(DUBS_SineTremolo, KeepsItsRateForATapOfZeroWithAnError) {
    DUBS_SineTremolo unit("id", kBlock, kRate);
    DUBS_SineTremolo untapped("id", kBlock, kRate);
    const LogRecorder log;
    parameter<float>(unit, "tapTime").set(0.0f);
    EXPECT_EQ(log.startingWith("Error").size(), 1u);
    EXPECT_EQ(run(unit, 300), run(untapped, 300));
}

}  // namespace
