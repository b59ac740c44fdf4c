#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <typeinfo>
#include <vector>

#include "core/Parameter/Observer.h"
#include "core/System/DspArchive.h"
#include "core/units/amp/DUBS_NorvaneArvelReverb65.h"
#include "support/LogRecorder.h"
#include "support/RealtimeGuard.h"
#include "utility/RealtimeThread.h"

namespace {

constexpr int kBlock = 32;
constexpr float kSampleRate = 44100.0f;
constexpr float kVolts = 1.2f;
constexpr const char* kId = "DUBS_NorvaneArvelReverb65";

struct FloatControl {
    const char* parameter;
    const char* logName;
    float initial;
};
const FloatControl kFloats[] = {{"idNormalVol", "NormalVol", 0.5f},
                                {"idNormalTreb", "NormalTreb", 0.5f},
                                {"idNormalMid", "NormalMid", 0.5f},
                                {"idNormalBass", "NormalBass", 0.5f},
                                {"idVibratoVol", "VibratoVol", 0.5f},
                                {"idVibratoTreb", "VibratoTreb", 0.5f},
                                {"idVibratoMid", "VibratoMid", 0.5f},
                                {"idVibratoBass", "VibratoBass", 0.5f},
                                {"idReverb", "Reverb", 0.0f},
                                {"idSpeed", "Speed", 0.0f},
                                {"idIntensity", "Intensity", 0.0f},
                                {"idCabinetHPF", "CabinetHPF", 20.0f},
                                {"idCabinetLPF", "CabinetLPF", 20000.0f},
                                {"idCabinetLevel", "CabinetLevel", -12.0f}};
const FloatControl kBools[] = {{"idNormalBright", "NormalBright", 0.0f},
                               {"idVibratoBright", "VibratoBright", 0.0f},
                               {"idReverbMute", "ReverbMute", 0.0f},
                               {"idTremoloMute", "TremoloMute", 0.0f}};

template <typename T>
Parameter<T>& parameter(DUBS_NorvaneArvelReverb65& unit, const char* name) {
    return dynamic_cast<Parameter<T>&>(*unit.getParameter(name));
}

DUBS_NorvaneArvelReverb65 makeUnit() {
    return {kId, kBlock, kSampleRate, kVolts};
}

struct Feeds {
    std::vector<float> speaker;
    std::vector<float> line;
    bool operator==(const Feeds&) const = default;
};

// The algorithm alone, without mutes and bypass.
Feeds play(DUBS_NorvaneArvelReverb65& unit, float level, int blocks = 200) {
    Feeds out;
    for (int start = 0; start < blocks * kBlock; start += kBlock) {
        float left[kBlock];
        float right[kBlock];
        for (int n = 0; n < kBlock; ++n) {
            left[n] = level * static_cast<float>(std::sin(0.03 * (start + n)));
            right[n] = level * static_cast<float>(std::sin(0.05 * (start + n)));
        }
        unit.process(left, right, left, right);
        out.speaker.insert(out.speaker.end(), left, left + kBlock);
        out.line.insert(out.line.end(), right, right + kBlock);
    }
    return out;
}

TEST(DUBS_NorvaneArvelReverb65, HasAllParametersWithTheirTypesAndDefaults) {
    auto unit = makeUnit();
    for (const FloatControl& control : kFloats)
        EXPECT_EQ(parameter<float>(unit, control.parameter).get(), control.initial) << control.parameter;
    for (const FloatControl& control : kBools)
        EXPECT_FALSE(parameter<bool>(unit, control.parameter).get()) << control.parameter;
    EXPECT_EQ(parameter<int>(unit, "idReverbTaper").get(), 0);
    EXPECT_EQ(parameter<std::string>(unit, "idCabinet").get(), "none");
    // And the reserved ones of its bases.
    EXPECT_EQ(unit.getParameters().size(), 20u + 7u);
    EXPECT_EQ(unit.getTarvekId(), kId);
}

TEST(DUBS_NorvaneArvelReverb65, ConstructionLoadsEveryDefaultInOrderAndSaysItsScales) {
    const LogRecorder log;
    const auto unit = makeUnit();
    const std::string tag = std::string(kId) + ": ";
    EXPECT_EQ(log.startingWith(tag),
              (std::vector<std::string>{tag + "inputVoltageMapping=1.200", tag + "initNormalVol(0.500)",
                                        tag + "initNormalTreb(0.500)",     tag + "initNormalMid(0.500)",
                                        tag + "initNormalBass(0.500)",     tag + "initNormalBright(0)",
                                        tag + "initVibratoVol(0.500)",     tag + "initVibratoTreb(0.500)",
                                        tag + "initVibratoMid(0.500)",     tag + "initVibratoBass(0.500)",
                                        tag + "initVibratoBright(0)",      tag + "initReverb(0.000)",
                                        tag + "initReverbMute(0)",         tag + "initReverbTaper(0)",
                                        tag + "initSpeed(0.000)",          tag + "initIntensity(0.000)",
                                        tag + "initTremoloMute(0)",        tag + "initCabinet(none)",
                                        tag + "initCabinetHPF(20.000)",    tag + "initCabinetLPF(20000.000)",
                                        tag + "initCabinetLevel(-12.000)"}));
    // 101 V over the product's 42.65 V.
    EXPECT_TRUE(log.has("Warn speakerVoltageScaling > 1.0, 2.368113"));
}

TEST(DUBS_NorvaneArvelReverb65, LiveAndLoadHandlersLogAndStore) {
    auto unit = makeUnit();
    const std::string tag = std::string(kId) + ": ";
    for (const FloatControl& control : kFloats) {
        const LogRecorder log;
        parameter<float>(unit, control.parameter).set(0.25f);
        EXPECT_TRUE(log.has(tag + "set" + control.logName + "(0.250)"));
        EXPECT_EQ(parameter<float>(unit, control.parameter).get(), 0.25f);
        parameter<float>(unit, control.parameter).init(0.75f);
        EXPECT_TRUE(log.has(tag + "init" + control.logName + "(0.750)"));
        EXPECT_EQ(parameter<float>(unit, control.parameter).get(), 0.75f);
    }
    for (const FloatControl& control : kBools) {
        const LogRecorder log;
        parameter<bool>(unit, control.parameter).set(true);
        EXPECT_TRUE(log.has(tag + "set" + control.logName + "(1)"));
        EXPECT_TRUE(parameter<bool>(unit, control.parameter).get());
    }
    const LogRecorder log;
    parameter<int>(unit, "idReverbTaper").set(1);
    parameter<std::string>(unit, "idCabinet").set("box.wav");
    EXPECT_TRUE(log.has(tag + "setReverbTaper(1)"));
    EXPECT_TRUE(log.has(tag + "setCabinet(box.wav)"));
    EXPECT_EQ(parameter<std::string>(unit, "idCabinet").get(), "box.wav");
}

TEST(DUBS_NorvaneArvelReverb65, AnArchiveBringsEveryParameterBack) {
    auto source = makeUnit();
    float value = 0.01f;
    for (const FloatControl& control : kFloats)
        parameter<float>(source, control.parameter).set(value += 0.06f);
    for (const FloatControl& control : kBools)
        parameter<bool>(source, control.parameter).set(true);
    parameter<int>(source, "idReverbTaper").set(1);
    parameter<std::string>(source, "idCabinet").set("box.wav");
    DspArchive archive;
    source.getArchive(archive);

    auto copy = makeUnit();
    DspArchive again(archive.toString());
    copy.init(again);
    for (const FloatControl& control : kFloats)
        EXPECT_EQ(parameter<float>(copy, control.parameter).get(),
                  parameter<float>(source, control.parameter).get())
            << control.parameter;
    for (const FloatControl& control : kBools)
        EXPECT_TRUE(parameter<bool>(copy, control.parameter).get()) << control.parameter;
    EXPECT_EQ(parameter<int>(copy, "idReverbTaper").get(), 1);
    EXPECT_EQ(parameter<std::string>(copy, "idCabinet").get(), "box.wav");
    DspArchive written;
    copy.getArchive(written);
    EXPECT_EQ(written.toString(), archive.toString());
}

TEST(DUBS_NorvaneArvelReverb65, AMissingKeyLeavesTheValueAndLoadsItAnew) {
    auto unit = makeUnit();
    parameter<float>(unit, "idNormalVol").set(0.9f);
    DspArchive archive("{\"idNormalBass\": 0.125}");
    const LogRecorder log;
    unit.init(archive);
    EXPECT_EQ(parameter<float>(unit, "idNormalVol").get(), 0.9f);
    EXPECT_EQ(parameter<float>(unit, "idNormalBass").get(), 0.125f);
    EXPECT_TRUE(log.has(std::string(kId) + ": initNormalVol(0.900)"));
}

class LastValue : public Observer<float> {
public:
    void update(const float& value) override {
        last = value;
        ++calls;
    }
    float last = -1.0f;
    int calls = 0;
};

TEST(DUBS_NorvaneArvelReverb65, ALoadTellsTheObserversOfItsParameters) {
    auto unit = makeUnit();
    LastValue observer;
    unit.getParameter("idNormalVol")->addObserver(&observer);
    DspArchive archive("{\"idNormalVol\": 0.25}");
    unit.init(archive);
    EXPECT_EQ(observer.last, 0.25f);
    EXPECT_EQ(observer.calls, 2);
    unit.getParameter("idNormalVol")->removeObserver(&observer);
}

TEST(DUBS_NorvaneArvelReverb65, AParameterLoadedIsHeardAtOnce) {
    auto loaded = makeUnit();
    DspArchive archive("{\"idNormalVol\": 1.0, \"idVibratoVol\": 0.0}");
    loaded.init(archive);
    ArvelReverb65 reference(kBlock, kSampleRate, kVolts, true);
    for (auto set :
         {&ArvelReverb65::setNormalBass, &ArvelReverb65::setNormalMid, &ArvelReverb65::setNormalTreb,
          &ArvelReverb65::setVibratoBass, &ArvelReverb65::setVibratoMid, &ArvelReverb65::setVibratoTreb})
        (reference.*set)(0.5f, true);
    reference.setNormalVolume(1.0f, true);
    reference.setVibratoVolume(0.0f, true);
    const Feeds out = play(loaded, 0.3f, 20);
    for (int start = 0; start < 20 * kBlock; start += kBlock) {
        float left[kBlock];
        float right[kBlock];
        for (int n = 0; n < kBlock; ++n) {
            left[n] = 0.3f * static_cast<float>(std::sin(0.03 * (start + n)));
            right[n] = 0.3f * static_cast<float>(std::sin(0.05 * (start + n)));
        }
        reference.process(left, right, left, right);
        for (int n = 0; n < kBlock; ++n)
            ASSERT_EQ(out.line[static_cast<std::size_t>(start + n)], right[n]);
    }
}

// While the clipper is in its straight part, the speaker feed is the line times 101 / 42.65, ten samples
// late.
TEST(DUBS_NorvaneArvelReverb65, TheSpeakerFeedIsTheLineScaledToTheProductsSpeaker) {
    auto unit = makeUnit();
    parameter<float>(unit, "idNormalVol").init(0.2f);
    parameter<float>(unit, "idVibratoVol").init(0.2f);
    const Feeds out = play(unit, 0.05f, 400);
    constexpr std::size_t kClipperDelay = 10;
    double peak = 0.0;
    for (const float y : out.speaker)
        peak = std::max(peak, double(std::abs(y)));
    EXPECT_GT(peak, 0.01);
    EXPECT_LT(peak, 0.7);
    for (std::size_t n = 4000; n < out.line.size(); ++n)
        ASSERT_NEAR(out.speaker[n], out.line[n - kClipperDelay] * 101.0 / 42.65, 0.02 * peak) << n;
}

TEST(DUBS_NorvaneArvelReverb65, TheClipperHoldsTheSpeakerFeedAndLeavesTheLine) {
    auto unit = makeUnit();
    parameter<float>(unit, "idNormalVol").init(1.0f);
    parameter<float>(unit, "idVibratoVol").init(1.0f);
    const Feeds out = play(unit, 1.0f, 400);
    float speaker = 0.0f;
    float line = 0.0f;
    for (std::size_t n = 0; n < out.line.size(); ++n) {
        speaker = std::max(speaker, std::abs(out.speaker[n]));
        line = std::max(line, std::abs(out.line[n]));
    }
    EXPECT_GT(line * 101.0f / 42.65f, 1.0f);  // without the clipper it would be out of range
    EXPECT_LT(speaker, 1.2f);                 // full scale and the ringing of the filter behind the curve
}

TEST(DUBS_NorvaneArvelReverb65, ABypassedAmpPassesTheDrySignal) {
    auto unit = makeUnit();
    unit.initBypass(true);
    float left[kBlock];
    float right[kBlock];
    std::vector<float> out;
    for (int block = 0; block < 100; ++block) {
        std::fill_n(left, kBlock, 0.25f);
        std::fill_n(right, kBlock, -0.5f);
        unit.connectInput(0, left, 1);
        unit.connectInput(1, right, 2);
        unit.process();
    }
    for (int n = 0; n < kBlock; ++n) {
        EXPECT_NEAR(unit.getOutputAddr(0)[n], 0.25f, 1e-4f);
        EXPECT_NEAR(unit.getOutputAddr(1)[n], -0.5f, 1e-4f);
    }
}

TEST(DUBS_NorvaneArvelReverb65, ProcessNeitherAllocatesNorLocksNorWrites) {
    auto unit = makeUnit();
    const RealtimeGuard guard;
    for (int block = 0; block < 50; ++block) {
        parameter<float>(unit, "idNormalVol").set(block % 2 ? 0.1f : 0.9f);
        const tvk::RealtimeThreadScope realtime;
        static_cast<DspUnit&>(unit).process();
    }
    EXPECT_EQ(guard.violations(), RealtimeGuard::Violations{});
}

}  // namespace
