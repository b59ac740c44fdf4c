#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "TestUnits.h"
#include "core/DspUnit/BlockGain.h"
#include "core/DspUnit/DspUnitStereo.h"
#include "support/LogRecorder.h"

namespace {

using testing::ElementsAre;

TEST(DspUnitStereo, HasItsFiveReservedParameters) {
    StereoUnit unit;
    std::vector<std::string> names;
    for (const auto& [name, parameter] : unit.getParameters())
        names.push_back(name);
    EXPECT_THAT(names, ElementsAre("clipState", "muteInput", "muteOutput", "tapTime", "tapTimeBPM"));
}

TEST(DspUnitStereo, MutesScaleInAndOutSampleBySample) {
    StereoUnit unit;
    ReferenceRamp in(0.001), out(0.001);
    for (int block = 0; block < 60; ++block) {
        if (block == 10) {
            unit.parameter<bool>("muteInput").set(true);
            in.target = 0.0;
        }
        if (block == 20) {
            unit.parameter<bool>("muteInput").set(false);
            unit.parameter<bool>("muteOutput").set(true);
            in.target = 1.0;
            out.target = 0.0;
        }
        if (block == 35) {
            unit.parameter<bool>("muteOutput").set(false);
            out.target = 1.0;
        }
        unit.run(1.0f);
        for (int n = 0; n < kBlock; ++n) {
            const double m = in.tick();
            const double expected = m * out.tick();
            ASSERT_NEAR(unit.left[n], m, 2e-6) << "the input is scaled where it lies";
            ASSERT_NEAR(unit.getOutputAddr(0)[n], expected, 4e-6) << block << " " << n;
            ASSERT_NEAR(unit.getOutputAddr(1)[n], -0.5 * expected, 4e-6) << block << " " << n;
        }
    }
}

TEST(DspUnitStereo, TheAlgorithmSeesInputsAndOutputsApart) {
    float* seen[4];
    StereoUnit unit(
        [&](float* a, float* b, float* c, float* d) { seen[0] = a, seen[1] = b, seen[2] = c, seen[3] = d; });
    unit.run(0.0f);
    EXPECT_EQ(seen[0], unit.left);
    EXPECT_EQ(seen[1], unit.right);
    EXPECT_EQ(seen[2], unit.getOutputAddr(0));
    EXPECT_EQ(seen[3], unit.getOutputAddr(1));
}

TEST(DspUnitStereo, BothInputsOnOneSourceAreScaledTwiceThere) {
    StereoUnit unit;
    float shared[kBlock];
    std::fill_n(shared, kBlock, 1.0f);
    unit.connectInput(0, shared, 1);
    unit.connectInput(1, shared, 2);
    unit.process();
    ReferenceRamp ramp(0.001);
    for (int n = 0; n < kBlock; ++n) {
        const double m = ramp.tick();
        EXPECT_NEAR(shared[n], m * m, 1e-6);
    }
}

TEST(DspUnitStereo, InitOfAMuteStartsAtSilenceMutedOrNot) {
    const float oneMinusP = static_cast<float>(1.0 - std::exp(-1.0 / 44.1));
    for (const char* name : {"muteInput", "muteOutput"}) {
        StereoUnit unit;
        for (int block = 0; block < 60; ++block)
            unit.run(1.0f);
        EXPECT_NEAR(unit.out(kBlock - 1), 1.0f, 1e-5f);
        unit.parameter<bool>(name).init(false);
        unit.run(1.0f);
        EXPECT_NEAR(unit.out(0), oneMinusP, 1e-5f) << name;
        EXPECT_FALSE(unit.parameter<bool>(name).get());
        unit.parameter<bool>(name).init(true);
        unit.run(1.0f);
        EXPECT_EQ(unit.out(0), 0.0f) << name;
        EXPECT_TRUE(unit.parameter<bool>(name).get());
    }
}

TEST(DspUnitStereo, MutesLogTheirControl) {
    StereoUnit unit;
    LogRecorder log;
    for (const char* name : {"muteInput", "muteOutput"}) {
        unit.parameter<bool>(name).set(true);
        unit.parameter<bool>(name).init(false);
    }
    std::vector<std::string> texts;
    for (const std::string& line : log.startingWith("DspUnitStereo: "))
        texts.push_back(line.substr(15));
    EXPECT_THAT(texts, ElementsAre("MuteInput set, 1", "MuteInput init, 0", "MuteOutput set, 1",
                                   "MuteOutput init, 0"));
}

TEST(DspUnitStereo, ClipStateIsReadOnceAfterAClip) {
    StereoUnit unit;
    for (int block = 0; block < 60; ++block)
        unit.run(0.5f);
    EXPECT_FALSE(unit.parameter<bool>("clipState").get());
    unit.run(1.5f);
    unit.run(0.5f);
    EXPECT_TRUE(unit.parameter<bool>("clipState").get());
    EXPECT_FALSE(unit.parameter<bool>("clipState").get());
}

TEST(DspUnitStereo, OnlyTheFirstSampleOfABlockCountsAsClipped) {
    StereoUnit unit;
    for (int block = 0; block < 60; ++block)
        unit.run(0.5f);
    unit.run([](int n) { return n % kBlock == 0 ? 0.5f : 2.0f; });
    EXPECT_FALSE(unit.parameter<bool>("clipState").get());
    unit.run([](int n) { return n % kBlock == 0 ? -2.0f : 0.5f; });
    EXPECT_TRUE(unit.parameter<bool>("clipState").get());
}

TEST(DspUnitStereo, EitherChannelClips) {
    for (int clipped : {0, 1}) {
        StereoUnit unit([=](float*, float*, float* left, float* right) {
            left[0] = clipped == 0 ? 1.5f : 0.0f;
            right[0] = clipped == 1 ? -1.5f : 0.0f;
        });
        unit.settle();
        EXPECT_TRUE(unit.parameter<bool>("clipState").get());
    }
    StereoUnit full([](float*, float*, float* left, float* right) { left[0] = right[0] = 1.0f; });
    full.settle();
    EXPECT_FALSE(full.parameter<bool>("clipState").get()) << "full scale itself is no clip";
}

TEST(DspUnitStereo, ClipStateCannotBeWritten) {
    StereoUnit unit;
    LogRecorder log;
    unit.parameter<bool>("clipState").set(true);
    unit.parameter<bool>("clipState").init(true);
    EXPECT_TRUE(log.has("Warn setClipState not implemented"));
    EXPECT_TRUE(log.has("Warn initClipState not implemented"));
    EXPECT_FALSE(unit.parameter<bool>("clipState").get());
}

TEST(DspUnitStereo, KeepsATapTimeAndIgnoresATempo) {
    StereoUnit unit;
    EXPECT_EQ(unit.getTapTime(), 0.0f);
    unit.parameter<float>("tapTime").set(0.4f);
    EXPECT_EQ(unit.getTapTime(), 0.4f);
    unit.parameter<float>("tapTime").init(0.3f);
    EXPECT_EQ(unit.parameter<float>("tapTime").get(), 0.3f);
    unit.parameter<float>("tapTimeBPM").set(120.0f);
    unit.parameter<float>("tapTimeBPM").init(90.0f);
    EXPECT_EQ(unit.parameter<float>("tapTimeBPM").get(), 0.0f);
    EXPECT_EQ(unit.getTapTime(), 0.3f);
}

TEST(DspUnitStereo, AnOverrideOfTheTapIsReachedThroughTheParameter) {
    struct Delay : StereoUnit {
        void setTapTime(float seconds) override { received = seconds; }
        float received = 0.0f;
    } unit;
    unit.parameter<float>("tapTime").set(0.25f);
    EXPECT_EQ(unit.received, 0.25f);
}

TEST(DspUnitStereo, ArchivesTheDerivedUnitsParametersOnly) {
    StereoUnit unit;
    DspArchive in(R"({"own":5,"muteOutput":true})"), out;
    unit.init(in);
    EXPECT_EQ(unit.own, 5);
    EXPECT_FALSE(unit.parameter<bool>("muteOutput").get());
    unit.getArchive(out);
    EXPECT_EQ(out.toString(), R"({"own":5})");
}

TEST(BlockGain, ARampAtRestGivesTheSameGainsAsItsRecursionToTheBit) {
    for (const float timeConstant : {0.001f, 0.01f}) {
        OnePoleRamp fast(timeConstant, kRate), slow(timeConstant, kRate);
        bool hasRested = false;
        for (int block = 0; block < 4000; ++block) {
            const float target = block < 1500 ? 1.0f : block < 3000 ? 0.3f : 0.0f;
            fast.setTarget(target);
            slow.setTarget(target);
            hasRested = hasRested || fast.isAtRest();
            float gains[kBlock];
            fillGains(fast, gains, kBlock);
            for (float gain : gains)
                ASSERT_EQ(gain, slow.tick()) << block;
        }
        EXPECT_TRUE(hasRested);
    }
}

}  // namespace
