#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TestUnits.h"
#include "core/DspUnitBypassStereo/DspUnitBypassStereo.h"
#include "core/Parameter/Observer.h"
#include "support/LogRecorder.h"

namespace {

using testing::ElementsAre;

// An algorithm with a tail of 50 ms or so: s <- 0.9995 s + 0.02 x.
struct Tail {
    template <typename Float>
    Float tick(Float x, Float& state) const {
        return state = Float(0.9995f) * state + Float(0.02f) * x;
    }
    void operator()(float* inLeft, float* inRight, float* outLeft, float* outRight) {
        for (int n = 0; n < kBlock; ++n) {
            outLeft[n] = tick(inLeft[n], left);
            outRight[n] = tick(inRight[n], right);
        }
    }
    float left = 0.0f, right = 0.0f;
};

// The crossfade around Tail in double precision, one channel.
struct ReferenceUnit {
    ReferenceRamp muteIn{0.001}, muteOut{0.001}, wet{0.001};
    double state = 0.0;

    double tick(double x, const std::string& type, bool isGloballyBypassed) {
        const double in = muteIn.tick() * x;
        const double w = wet.tick();
        const double tail = Tail().tick(type == "PostNoPreKill" ? in : w * in, state);
        const bool tailRings = type == "Pre" && !isGloballyBypassed;
        return ((1.0 - w) * in + (tailRings ? tail : w * tail)) * muteOut.tick();
    }
};

float noise(int n) {
    std::uint32_t x = static_cast<std::uint32_t>(n) * 2654435761u + 12345u;
    x ^= x >> 15;
    x *= 2246822519u;
    x ^= x >> 13;
    return static_cast<float>(x) / 2147483648.0f - 1.0f;
}

class Crossfade : public testing::TestWithParam<const char*> {};

TEST_P(Crossfade, FollowsTheFormulaSampleBySample) {
    const std::string type = GetParam();
    BypassUnit unit{Tail()};
    unit.parameter<std::string>("bypassType").set(type);
    ReferenceUnit left, right;
    bool isGloballyBypassed = false;
    const auto eachRamp = [&](ReferenceRamp ReferenceUnit::*ramp, double target) {
        (left.*ramp).target = (right.*ramp).target = target;
    };
    for (int block = 0; block < 120; ++block) {
        switch (block) {
            case 20:
                unit.parameter<bool>("bypass").set(true);
                eachRamp(&ReferenceUnit::wet, 0.0);
                break;
            case 22:
                unit.parameter<bool>("bypass").set(false);
                eachRamp(&ReferenceUnit::wet, 1.0);
                break;
            case 40:
                unit.setGlobalFxBypass(isGloballyBypassed = true);
                eachRamp(&ReferenceUnit::wet, 0.0);
                break;
            case 60:
                unit.setGlobalFxBypass(isGloballyBypassed = false);
                eachRamp(&ReferenceUnit::wet, 1.0);
                break;
            case 75:
                unit.parameter<bool>("muteInput").set(true);
                eachRamp(&ReferenceUnit::muteIn, 0.0);
                break;
            case 90:
                unit.parameter<bool>("muteInput").set(false);
                eachRamp(&ReferenceUnit::muteIn, 1.0);
                unit.parameter<bool>("muteOutput").set(true);
                eachRamp(&ReferenceUnit::muteOut, 0.0);
                break;
            case 100:
                unit.parameter<bool>("muteOutput").set(false);
                eachRamp(&ReferenceUnit::muteOut, 1.0);
                unit.parameter<bool>("bypass").set(true);
                eachRamp(&ReferenceUnit::wet, 0.0);
                break;
        }
        const int start = unit.sample;
        unit.run(noise);
        for (int n = 0; n < kBlock; ++n) {
            const double x = noise(start + n);
            ASSERT_NEAR(unit.getOutputAddr(0)[n], left.tick(x, type, isGloballyBypassed), 1e-5)
                << block << " " << n;
            ASSERT_NEAR(unit.getOutputAddr(1)[n], right.tick(-0.5 * x, type, isGloballyBypassed), 1e-5)
                << block << " " << n;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Types, Crossfade, testing::Values("Pre", "Post", "PostNoPreKill"));

TEST(DspUnitBypassStereo, HasItsReservedParametersAndStartsEngaged) {
    BypassUnit unit;
    std::vector<std::string> names;
    for (const auto& [name, parameter] : unit.getParameters())
        names.push_back(name);
    EXPECT_THAT(names, ElementsAre("bypass", "bypassType", "clipState", "muteInput", "muteOutput", "tapTime",
                                   "tapTimeBPM"));
    EXPECT_FALSE(unit.parameter<bool>("bypass").get());
    EXPECT_EQ(unit.parameter<std::string>("bypassType").get(), "Post");
}

TEST(DspUnitBypassStereo, WithoutAnAlgorithmItPassesTheSignal) {
    BypassUnit unit;
    unit.settle();
    unit.run(0.5f);
    for (int n = 0; n < kBlock; ++n) {
        EXPECT_NEAR(unit.getOutputAddr(0)[n], 0.5f, 1e-5f);
        EXPECT_NEAR(unit.getOutputAddr(1)[n], -0.25f, 1e-5f);
    }
}

TEST(DspUnitBypassStereo, TheAlgorithmRunsInPlaceOnWorkArrays) {
    float* seen[4];
    BypassUnit unit(
        [&](float* a, float* b, float* c, float* d) { seen[0] = a, seen[1] = b, seen[2] = c, seen[3] = d; });
    unit.run(0.0f);
    EXPECT_EQ(seen[0], seen[2]);
    EXPECT_EQ(seen[1], seen[3]);
    EXPECT_NE(seen[0], seen[1]);
    EXPECT_NE(seen[0], unit.left);
    EXPECT_NE(seen[0], unit.getOutputAddr(0));
}

TEST(DspUnitBypassStereo, BypassedWithNothingConnectedItGivesExactZero) {
    BypassUnit unit([](float*, float*, float* left, float* right) {
        std::fill_n(left, kBlock, 0.25f);
        std::fill_n(right, kBlock, 0.25f);
    });
    unit.initBypass(true);
    for (int block = 0; block < 10; ++block) {
        unit.process();
        for (int n = 0; n < kBlock; ++n) {
            ASSERT_EQ(unit.getOutputAddr(0)[n], 0.0f);
            ASSERT_EQ(unit.getOutputAddr(1)[n], 0.0f);
        }
    }
}

TEST(DspUnitBypassStereo, InPreTheTailRingsOnAfterBypassAndTheGlobalBypassCutsIt) {
    BypassUnit unit{Tail()};
    unit.parameter<std::string>("bypassType").set("Pre");
    for (int block = 0; block < 100; ++block)
        unit.run(1.0f);
    unit.parameter<bool>("bypass").set(true);
    for (int block = 0; block < 20; ++block)
        unit.run(0.0f);
    EXPECT_GT(std::abs(unit.out(kBlock - 1)), 1.0f) << "the tail holds thirty times the input";
    unit.setGlobalFxBypass(true);
    for (int block = 0; block < 20; ++block)
        unit.run(0.0f);
    EXPECT_LT(std::abs(unit.out(kBlock - 1)), 1e-4f);
}

TEST(DspUnitBypassStereo, BothBypassesMustBeClearForTheEffectToComeBack) {
    const auto scale = [](float* inLeft, float* inRight, float* left, float* right) {
        for (int n = 0; n < kBlock; ++n) {
            left[n] = 10.0f * inLeft[n];
            right[n] = 10.0f * inRight[n];
        }
    };
    const auto gain = [](BypassUnit& unit) {
        for (int block = 0; block < 60; ++block)
            unit.run(0.01f);
        return unit.out(kBlock - 1) / 0.01f;
    };
    for (const bool globalFirst : {false, true}) {
        BypassUnit unit(scale);
        unit.parameter<bool>("bypass").set(true);
        unit.setGlobalFxBypass(true);
        EXPECT_NEAR(gain(unit), 1.0f, 1e-3f);
        globalFirst ? unit.setGlobalFxBypass(false) : unit.parameter<bool>("bypass").set(false);
        EXPECT_NEAR(gain(unit), 1.0f, 1e-3f);
        globalFirst ? unit.parameter<bool>("bypass").set(false) : unit.setGlobalFxBypass(false);
        EXPECT_NEAR(gain(unit), 10.0f, 1e-3f);
    }
}

// The wet gain of the first sample of the next block: 1 in, -1 out of the algorithm, so out = 1 - 2 w in
// "PostNoPreKill".
float firstWetGain(BypassUnit& unit) {
    unit.run(1.0f);
    return 0.5f * (1.0f - unit.out(0));
}

void invert(float* inLeft, float* inRight, float* left, float* right) {
    for (int n = 0; n < kBlock; ++n) {
        left[n] = -inLeft[n];
        right[n] = -inRight[n];
    }
}

TEST(DspUnitBypassStereo, InitOfTheBypassIsAtOnceAndSetFades) {
    BypassUnit unit(invert);
    unit.parameter<std::string>("bypassType").set("PostNoPreKill");
    unit.settle();
    const float p = static_cast<float>(std::exp(-1.0 / 44.1));
    unit.parameter<bool>("bypass").set(true);
    EXPECT_NEAR(firstWetGain(unit), p, 1e-5f);
    unit.parameter<bool>("bypass").init(false);
    EXPECT_NEAR(firstWetGain(unit), 1.0f, 1e-5f);
    unit.parameter<bool>("bypass").init(true);
    unit.run(1.0f);
    const float muteGain = unit.left[0];
    EXPECT_EQ(unit.out(0), muteGain * unit.left[0]) << "a wet gain of exactly 0 leaves the dry signal alone";
}

TEST(DspUnitBypassStereo, InitOfTheBypassHeedsTheGlobalOne) {
    BypassUnit unit(invert);
    unit.parameter<std::string>("bypassType").set("PostNoPreKill");
    unit.settle();
    unit.setGlobalFxBypass(true);
    unit.parameter<bool>("bypass").init(false);
    EXPECT_NEAR(firstWetGain(unit), 0.0f, 1e-5f);
}

TEST(DspUnitBypassStereo, TheFadeReachesOneOverEAfterAMillisecondAndAPercentAfterFivePointSix) {
    BypassUnit unit(invert);
    unit.parameter<std::string>("bypassType").set("PostNoPreKill");
    unit.settle();
    unit.parameter<bool>("bypass").set(true);
    std::vector<float> wet;
    while (wet.size() < 256) {
        unit.run(1.0f);
        for (int n = 0; n < kBlock; ++n)
            wet.push_back(0.5f * (1.0f - unit.out(n)));
    }
    // 44.1 samples are a time constant; the n-th tick has fallen to exp(-n / 44.1).
    EXPECT_NEAR(wet[43], std::exp(-44.0 / 44.1), 1e-5);
    EXPECT_GT(wet[201], 0.01f);
    EXPECT_LT(wet[203], 0.01f) << "4.6 ms";
}

TEST(DspUnitBypassStereo, InPostNoPreKillTheAlgorithmHearsTheWholeSignalWhileBypassed) {
    for (const auto& [type, expected] : {std::pair{"PostNoPreKill", 0.5f}, {"Post", 0.0f}, {"Pre", 0.0f}}) {
        float heard = -1.0f;
        BypassUnit unit([&](float* inLeft, float*, float*, float*) { heard = inLeft[kBlock - 1]; });
        unit.parameter<std::string>("bypassType").set(type);
        unit.parameter<bool>("bypass").init(true);
        for (int block = 0; block < 60; ++block)
            unit.run(0.5f);
        EXPECT_NEAR(heard, expected, 1e-5f) << type;
    }
}

TEST(DspUnitBypassStereo, TheAlgorithmRunsOnWhileBypassedInEveryMode) {
    for (const char* type : {"Pre", "Post", "PostNoPreKill"}) {
        int calls = 0;
        BypassUnit unit([&](float*, float*, float*, float*) { ++calls; });
        unit.parameter<std::string>("bypassType").set(type);
        unit.parameter<bool>("bypass").init(true);
        for (int block = 0; block < 5; ++block)
            unit.run(0.0f);
        EXPECT_EQ(calls, 5);
    }
}

TEST(DspUnitBypassStereo, AnUnknownTypeActsAsPostWarnsAndIsWrittenBackAsGiven) {
    BypassUnit odd{Tail()}, post{Tail()};
    LogRecorder log;
    odd.parameter<std::string>("bypassType").set("pre");
    post.parameter<std::string>("bypassType").set("Post");
    EXPECT_EQ(log.count("Warn invalid type, defaulting to Post"), 1);
    for (BypassUnit* unit : {&odd, &post})
        unit->settle();
    for (BypassUnit* unit : {&odd, &post})
        unit->parameter<bool>("bypass").set(true);
    for (int block = 0; block < 10; ++block) {
        odd.run(noise);
        post.run(noise);
        for (int n = 0; n < kBlock; ++n)
            ASSERT_EQ(odd.out(n), post.out(n));
    }
    DspArchive archive;
    odd.getArchive(archive);
    EXPECT_EQ(archive.toString(), R"({"bypass":true,"bypassType":"pre","own":0})");
}

TEST(DspUnitBypassStereo, ATypeChangeLeavesTheFadeAlone) {
    BypassUnit unit(invert);
    unit.settle();
    unit.parameter<bool>("bypass").set(true);
    unit.parameter<std::string>("bypassType").init("PostNoPreKill");
    EXPECT_NEAR(firstWetGain(unit), std::exp(-1.0 / 44.1), 1e-5);
}

TEST(DspUnitBypassStereo, InitReadsTheArchiveInOrderAndTellsObservers) {
    struct Watcher : Observer<bool> {
        void update(const bool& value) override { seen.push_back(value); }
        std::vector<bool> seen;
    } watcher;
    BypassUnit unit;
    unit.parameter<bool>("bypass").addObserver(&watcher);
    DspArchive archive(R"({"bypass":true,"bypassType":"Pre","own":9,"muteInput":true})");
    LogRecorder log;
    unit.init(archive);
    EXPECT_EQ(watcher.seen, (std::vector<bool>{false, true}));
    EXPECT_EQ(unit.own, 9);
    EXPECT_FALSE(unit.parameter<bool>("muteInput").get()) << "mutes are not stored";
    EXPECT_THAT(log.lines(),
                ElementsAre("DspFileJSON: get(bypass)", "Parameter: In Parameter::init",
                            "DspUnitBypassStereo: Bypass init, 1", "DspFileJSON: get(bypassType)",
                            "Parameter: In Parameter::init", "DspUnitBypassStereo: BypassType init, Pre",
                            "DspFileJSON: get(own)"));
}

TEST(DspUnitBypassStereo, MissingKeysLeaveTheValues) {
    BypassUnit unit;
    unit.parameter<bool>("bypass").set(true);
    unit.parameter<std::string>("bypassType").set("PostNoPreKill");
    unit.own = 4;
    DspArchive empty("{}"), out;
    unit.init(empty);
    unit.getArchive(out);
    EXPECT_EQ(out.toString(), R"({"bypass":true,"bypassType":"PostNoPreKill","own":4})");
}

TEST(DspUnitBypassStereo, SettersLogTheirControl) {
    BypassUnit unit;
    LogRecorder log;
    unit.parameter<bool>("bypass").set(true);
    unit.parameter<std::string>("bypassType").set("Pre");
    unit.setGlobalFxBypass(true);
    EXPECT_THAT(log.startingWith("DspUnitBypassStereo"),
                ElementsAre("DspUnitBypassStereo: Bypass set, 1", "DspUnitBypassStereo: BypassType set, Pre",
                            "DspUnitBypassStereo: setGlobalFxBypass(1)"));
}

TEST(DspUnitBypassStereo, PresentsADefaultLoad) {
    BypassUnit unit;
    LogRecorder log;
    EXPECT_EQ(unit.getDspUnitImpedance(1), 1000000.0f);
    EXPECT_EQ(unit.getDspUnitCapacitance(), 0.01f);
    EXPECT_THAT(log.lines(),
                ElementsAre("DspUnitBypassStereo: getDspUnitImpedance: (1) Default value",
                            "DspUnitBypassStereo: getDspUnitCapacitance: (0.010000) Default value"));
}

TEST(DspUnitBypassStereo, ClipsAreLatchedBehindTheOutputMute) {
    BypassUnit unit;
    unit.settle();
    unit.run(2.0f);
    EXPECT_TRUE(unit.parameter<bool>("clipState").get());
    unit.parameter<bool>("muteOutput").set(true);
    for (int block = 0; block < 60; ++block)
        unit.run(2.0f);
    unit.parameter<bool>("clipState").get();
    unit.run(2.0f);
    EXPECT_FALSE(unit.parameter<bool>("clipState").get());
}

}  // namespace
