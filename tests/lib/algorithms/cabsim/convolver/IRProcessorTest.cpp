#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "algorithms/cabsim/IRProcessor.h"
#include "support/DirectConvolution.h"
#include "support/LogRecorder.h"
#include "support/RealtimeGuard.h"
#include "support/TemporaryFolder.h"
#include "support/YieldingClock.h"
#include "utility/BackgroundJobs.h"
#include "utility/HelperStall.h"
#include "utility/Log.h"
#include "utility/RealtimeThread.h"
#include "wav/WavWriter.h"

namespace {

constexpr int kBlock = 32;
constexpr int kCapacity = 4096;
constexpr int kHead = 128;
constexpr float kRateHz = 44100.0f;
constexpr double kTolerance = 1e-5;
constexpr const char* kOverrun = "Warn Convolution background thread overruning";

std::unique_ptr<IRProcessor> cabinet(int block = kBlock) {
    return std::make_unique<IRProcessor>(block, kCapacity, 128, 64, kHead, 0, "cabSim", 49, kRateHz);
}

class IRProcessorTest : public testing::Test {
protected:
    // Channels of equal length, interleaved into a file; returns its path.
    std::string writeChannels(const std::string& name, const std::vector<std::vector<float>>& channels,
                              int rateHz = 44100) {
        const std::string path = folder.file(name);
        std::vector<float> frames;
        for (std::size_t n = 0; n < channels[0].size(); ++n) {
            for (const auto& channel : channels)
                frames.push_back(channel[n]);
        }
        tvk::WavWriter file(path, rateHz, static_cast<int>(channels.size()));
        file.write(frames.data(), channels[0].size());
        file.close();
        return path;
    }
    std::string write(const std::string& name, const std::vector<float>& ir) {
        return writeChannels(name, {ir});
    }

    // Plays whole blocks, with the helper done before each.
    static std::vector<float> play(IRProcessor& processor, const std::vector<float>& in, int block = kBlock) {
        std::vector<float> out(in.size());
        for (std::size_t n = 0; n < in.size(); n += static_cast<std::size_t>(block)) {
            tvk::BackgroundJobs::waitUntilIdle();
            processor.process(in.data() + n, out.data() + n, block);
        }
        tvk::BackgroundJobs::waitUntilIdle();
        return out;
    }

    static std::vector<float> truncated(std::vector<float> ir) {
        ir.resize(std::min<std::size_t>(ir.size(), kCapacity));
        return ir;
    }

    TemporaryFolder folder;
    LogRecorder log;
    YieldingClock clock;
};

TEST_F(IRProcessorTest, PassesTheDrySignalUntilTheFirstLoad) {
    const auto processor = cabinet();
    const auto in = whiteNoise(kBlock * 20, 1);
    EXPECT_FALSE(processor->isActive());
    EXPECT_EQ(play(*processor, in), in);
}

TEST_F(IRProcessorTest, IsTheConvolutionFromTheFirstSampleAfterALoad) {
    for (const int block : {1, 7, 32, 33, 64, 128}) {
        const auto processor = cabinet(block);
        for (const int length : {1, kHead - 1, kHead, kHead + 1, 2 * kHead, 2 * kHead + 1, kCapacity}) {
            for (const auto& ir : {decayingNoise(length, 2), whiteNoise(length, 3)}) {
                ASSERT_TRUE(processor->load(write("cab.wav", ir)));
                // Longer than the response, and no whole number of heads: each load finds the middle of one.
                const auto in = whiteNoise((length + 5 * kHead + 50) / block * block, 4);
                EXPECT_LE(relativeError(play(*processor, in, block), in, ir, 0, static_cast<int>(in.size())),
                          kTolerance)
                    << block << ' ' << length;
            }
        }
    }
    EXPECT_FALSE(log.has(kOverrun));
}

TEST_F(IRProcessorTest, AResponseOfItsWholeCapacityIsUsedToTheLastSampleAndALongerOneIsCutWithoutAMessage) {
    std::vector<float> ir(kCapacity + 1, 0.0f);
    ir[kCapacity - 1] = 0.5f;
    ir[kCapacity] = 1.0f;
    std::vector<float> click(6016, 0.0f);
    click[10] = 1.0f;
    for (const bool isLonger : {false, true}) {
        const auto processor = cabinet();
        const auto taken = isLonger ? ir : truncated(ir);
        const std::string path = write("cab.wav", taken);
        log.clear();
        ASSERT_TRUE(processor->load(path));
        EXPECT_TRUE(log.has("IRProcessor: IR Size is: " + std::to_string(taken.size())));
        EXPECT_TRUE(log.startingWith("Warn").empty());
        EXPECT_TRUE(log.startingWith("Error").empty());
        const auto out = play(*processor, click);
        for (std::size_t n = 0; n < out.size(); ++n)
            EXPECT_NEAR(out[n], n == 10 + kCapacity - 1 ? 0.5 : 0.0, 1e-6) << n;
    }
}

TEST_F(IRProcessorTest, AFileOfAnotherRateIsRefusedAndLeavesTheDrySignal) {
    const auto processor = cabinet();
    ASSERT_TRUE(processor->load(write("good.wav", decayingNoise(500, 5))));
    const std::string path = writeChannels("other.wav", {decayingNoise(500, 6)}, 48000);
    EXPECT_FALSE(processor->load(path));
    EXPECT_TRUE(log.has("Warn File sample rate: 48000 does not match system sample rate : 44100\n"));
    EXPECT_TRUE(log.has("IRProcessor: trying to load file at " + path));
    EXPECT_TRUE(log.has("IRProcessor: Invalid file path " + path));
    const auto in = whiteNoise(kBlock * 20, 7);
    EXPECT_EQ(play(*processor, in), in);
}

TEST_F(IRProcessorTest, AMissingFileLeavesTheDrySignalAndTheNextLoadWorks) {
    const auto processor = cabinet();
    const auto in = whiteNoise(kBlock * 60, 8);
    EXPECT_FALSE(processor->load(folder.file("none.wav")));
    EXPECT_FALSE(processor->isActive());
    EXPECT_EQ(play(*processor, in), in);
    const auto ir = decayingNoise(900, 9);
    EXPECT_TRUE(processor->load(write("cab.wav", ir)));
    EXPECT_LE(relativeError(play(*processor, in), in, ir, 0, static_cast<int>(in.size())), kTolerance);
}

TEST_F(IRProcessorTest, AStereoFileContributesItsFirstChannel) {
    const auto processor = cabinet();
    const auto left = decayingNoise(700, 10);
    ASSERT_TRUE(processor->load(writeChannels("stereo.wav", {left, whiteNoise(700, 11)})));
    const auto in = whiteNoise(kBlock * 60, 12);
    EXPECT_LE(relativeError(play(*processor, in), in, left, 0, static_cast<int>(in.size())), kTolerance);
}

TEST_F(IRProcessorTest, AShorterResponseAfterALongerOneLeavesNothingOfIt) {
    const auto processor = cabinet();
    ASSERT_TRUE(processor->load(write("long.wav", whiteNoise(kCapacity, 13))));
    play(*processor, whiteNoise(kBlock * 200, 14));
    const std::vector<float> ir{0.25f};
    ASSERT_TRUE(processor->load(write("short.wav", ir)));
    const auto in = whiteNoise(kBlock * 200, 15);
    const auto out = play(*processor, in);
    for (std::size_t n = 0; n < in.size(); ++n)
        ASSERT_NEAR(out[n], 0.25f * in[n], 1e-6) << n;
}

TEST_F(IRProcessorTest, AStalledHelperIsNotWaitedForAndWarnsOnceAHead) {
    const auto ir = decayingNoise(kCapacity, 16);
    const auto in = whiteNoise(kHead * 60, 17);
    std::vector<float> out(in.size());
    const auto processor = cabinet();
    ASSERT_TRUE(processor->load(write("cab.wav", ir)));
    auto playTo = [&, n = 0](int end, bool waits) mutable {
        for (; n < end; n += kBlock) {
            if (waits) tvk::BackgroundJobs::waitUntilIdle();
            processor->process(in.data() + n, out.data() + n, kBlock);
        }
    };
    playTo(10 * kHead - kBlock, true);
    tvk::BackgroundJobs::waitUntilIdle();
    {
        const tvk::HelperStall stall("cabSim");
        playTo(15 * kHead, false);
        tvk::HelperStall::waitUntilHeld();
        EXPECT_EQ(log.count(kOverrun), 5);
    }
    playTo(60 * kHead, true);
    EXPECT_EQ(log.count(kOverrun), 5);
    EXPECT_LE(relativeError(out, in, ir, 0, 11 * kHead), kTolerance);
    EXPECT_GT(relativeError(out, in, ir, 11 * kHead, 16 * kHead), 0.001);
    EXPECT_LE(relativeError(out, in, ir, 16 * kHead, 60 * kHead), kTolerance);
}

TEST_F(IRProcessorTest, AStallLongerThanTheRingRecoversOneResponseLater) {
    const auto ir = decayingNoise(kCapacity, 18);
    const auto in = whiteNoise(kHead * 100, 19);
    std::vector<float> out(in.size());
    const auto processor = cabinet();
    ASSERT_TRUE(processor->load(write("cab.wav", ir)));
    for (int n = 0; n < 20 * kHead; n += kBlock) {
        tvk::BackgroundJobs::waitUntilIdle();
        processor->process(in.data() + n, out.data() + n, kBlock);
    }
    tvk::BackgroundJobs::waitUntilIdle();
    auto stall = std::make_unique<tvk::HelperStall>("cabSim");
    for (int n = 20 * kHead; n < 40 * kHead; n += kBlock)
        processor->process(in.data() + n, out.data() + n, kBlock);
    stall.reset();
    for (int n = 40 * kHead; n < 100 * kHead; n += kBlock) {
        tvk::BackgroundJobs::waitUntilIdle();
        processor->process(in.data() + n, out.data() + n, kBlock);
    }
    EXPECT_LE(relativeError(out, in, ir, 41 * kHead + kCapacity, 100 * kHead), kTolerance);
}

TEST_F(IRProcessorTest, ALoadWaitsForAHeldTailAndPassesTheDrySignalMeanwhile) {
    const auto processor = cabinet();
    const auto in = whiteNoise(kHead * 20, 20);
    ASSERT_TRUE(processor->load(write("first.wav", whiteNoise(kCapacity, 21))));
    const std::string second = write("second.wav", std::vector<float>{0.5f});
    auto stall = std::make_unique<tvk::HelperStall>("cabSim");
    std::vector<float> out(in.size());
    for (int n = 0; n < 2 * kHead; n += kBlock)
        processor->process(in.data() + n, out.data() + n, kBlock);
    tvk::HelperStall::waitUntilHeld();

    std::atomic<bool> isLoaded{false};
    std::thread loader([&] { isLoaded = processor->load(second); });
    while (processor->isActive())
        std::this_thread::yield();
    for (int n = 0; n < static_cast<int>(in.size()); n += kBlock)
        processor->process(in.data() + n, out.data() + n, kBlock);
    EXPECT_EQ(out, in);
    EXPECT_FALSE(isLoaded);
    stall.reset();
    loader.join();
    EXPECT_TRUE(isLoaded);
    const auto halved = play(*processor, in);
    for (std::size_t n = 0; n < in.size(); ++n)
        ASSERT_NEAR(halved[n], 0.5f * in[n], 1e-6) << n;
}

// Positive responses make a constant signal positive at every moment: dry, in a convolution, after a load.
TEST_F(IRProcessorTest, AThousandLoadsFromTwoThreadsUnderRunningAudioLeaveTheRightCabinet) {
    std::vector<std::vector<float>> irs;
    std::vector<std::string> paths;
    for (const int length : {60, 200, 1000, kCapacity}) {
        std::vector<float> ir = decayingNoise(length, static_cast<unsigned>(length));
        for (float& h : ir)
            h = 0.01f + 0.1f * std::abs(h);
        irs.push_back(ir);
        paths.push_back(write("cab" + std::to_string(length) + ".wav", ir));
    }
    const auto processor = cabinet();
    std::atomic<bool> isRunning{true};
    std::atomic<bool> wasSilent{false};
    std::atomic<long> blocks{0};
    std::thread audio([&] {
        const tvk::RealtimeThreadScope audioThread;
        const std::vector<float> in(kBlock, 0.5f);
        std::vector<float> out(kBlock);
        for (; isRunning; ++blocks) {
            processor->process(in.data(), out.data(), kBlock);
            const bool isPositive = std::all_of(out.begin(), out.end(), [](float y) { return y > 1e-3f; });
            if (!isPositive) wasSilent = true;
            std::this_thread::yield();
        }
    });
    const auto storm = [&](std::size_t offset) {
        for (std::size_t i = 0; i < 500; ++i)
            EXPECT_TRUE(processor->load(paths[(i + offset) % paths.size()]));
    };
    std::thread other(storm, 1);
    storm(2);
    other.join();
    ASSERT_TRUE(processor->load(paths[3]));
    isRunning = false;
    audio.join();
    EXPECT_FALSE(wasSilent);
    EXPECT_GT(blocks, 0);
    while (tvk::log::drainRealtimeRing() > 0) {
    }

    ASSERT_TRUE(processor->load(paths[2]));
    const auto in = whiteNoise(kBlock * 200, 22);
    EXPECT_LE(relativeError(play(*processor, in), in, irs[2], 0, static_cast<int>(in.size())), kTolerance);
}

TEST_F(IRProcessorTest, ProcessDoesNothingThatTheAudioThreadMustNot) {
    const auto processor = cabinet();
    const auto in = whiteNoise(kBlock * 400, 23);
    std::vector<float> out(in.size());
    ASSERT_TRUE(processor->load(write("cab.wav", decayingNoise(kCapacity, 24))));
    const RealtimeGuard guard;
    {
        const tvk::RealtimeThreadScope audioThread;
        for (std::size_t n = 0; n < in.size(); n += kBlock)
            processor->process(in.data() + n, out.data() + n, kBlock);
    }
    EXPECT_EQ(guard.violations(), RealtimeGuard::Violations{});
    tvk::log::drainRealtimeRing();
}

TEST_F(IRProcessorTest, GoesWithWorkUnfinishedAndLeavesNothingPending) {
    for (int i = 0; i < 20; ++i) {
        const auto processor = cabinet();
        ASSERT_TRUE(processor->load(write("cab.wav", decayingNoise(kCapacity, 25))));
        const auto in = whiteNoise(kHead * 4, 26);
        std::vector<float> out(in.size());
        for (std::size_t n = 0; n < in.size(); n += kBlock)
            processor->process(in.data() + n, out.data() + n, kBlock);
    }
    EXPECT_EQ(tvk::BackgroundJobs::pending(), 0);
    EXPECT_EQ(log.count("IRProcessor: destructor called"), 20);
}

TEST_F(IRProcessorTest, SizesThatDoNotFitAreRefused) {
    EXPECT_THROW(IRProcessor(256, kCapacity, 128, 64, 128, 0, "cabSim", 49, kRateHz), std::invalid_argument);
    EXPECT_THROW(IRProcessor(32, kCapacity, 128, 60, 128, 0, "cabSim", 49, kRateHz), std::invalid_argument);
}

}  // namespace
