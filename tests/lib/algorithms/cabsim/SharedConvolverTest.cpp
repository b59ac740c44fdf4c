// Several units around the one convolver of the pool.
#include <algorithm>
#include <atomic>
#include <thread>

#include "CabinetFixture.h"
#include "algorithms/cabsim/UserIRQNS.h"
#include "lib/math/Response.h"
#include "support/RealtimeGuard.h"
#include "utility/RealtimeThread.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kWarning =
    "Warn IRStream: another unit plays through the IRProcessor, passing the dry signal";

class SharedConvolverTest : public CabinetFixture {
protected:
    SharedConvolverTest() {
        IRProcessorPool::fill({processor});
        writeUser("a", decayingNoise(4096, 1));
        writeUser("b", decayingNoise(4096, 2));
    }
    std::unique_ptr<UserIRQNS> unit() const { return std::make_unique<UserIRQNS>(kBlock, kRateHz); }
    // What a fresh unit alone makes of the signal with this response.
    Signal alone(const std::string& name) const {
        const auto fresh = unit();
        fresh->setFile(name);
        return play(*fresh, in);
    }

    const std::shared_ptr<IRProcessor> processor = convolver();
    const Signal in = whiteNoise(2048, 7);
};

TEST_F(SharedConvolverTest, WithoutAPoolAUnitSaysSoAndStaysDry) {
    IRProcessorPool::clear();
    {
        const auto bare = unit();
        EXPECT_EQ(complaints(), Lines{"Warn UserIRQNS: pointer not available"});
        bare->setFile("a");
        EXPECT_EQ(play(*bare, in), in);
        log.clear();
    }
    EXPECT_EQ(complaints(), Lines{"Warn UserIRQNS: Tried to release null IRProcessor object"});
}

TEST_F(SharedConvolverTest, AnEmptyPoolIsAnotherWarning) {
    for (const auto& empty : {std::deque<std::shared_ptr<IRProcessor>>{}, {nullptr}}) {
        IRProcessorPool::fill(empty);
        log.clear();
        const auto bare = unit();
        EXPECT_EQ(complaints(), Lines{"Warn UserIRQNS: Failed to create IRProcessor object"});
    }
}

TEST_F(SharedConvolverTest, EveryUnitHasAShareAndGivesItBack) {
    const long before = processor.use_count();
    {
        const auto one = unit();
        const auto two = unit();
        EXPECT_EQ(processor.use_count(), before + 2);
        EXPECT_EQ(IRProcessorPool::size(), 1u);
    }
    EXPECT_EQ(processor.use_count(), before);
    EXPECT_EQ(complaints(), Lines{});
}

TEST_F(SharedConvolverTest, TheUnitThatLoadedLastOwnsTheStream) {
    const Signal a = alone("a");
    const Signal b = alone("b");
    const auto older = unit();
    const auto newer = unit();
    older->setFile("a");
    EXPECT_EQ(play(*older, in), a);
    newer->setFile("b");
    EXPECT_EQ(play(*older, in), in);
    EXPECT_EQ(play(*newer, in), b);
    EXPECT_EQ(complaints(), Lines{kWarning});
    older->setFile("a");
    EXPECT_EQ(play(*older, in), a);
    EXPECT_EQ(play(*newer, in), in);
    EXPECT_EQ(complaints(), Lines(2, kWarning));
}

TEST_F(SharedConvolverTest, BothMayBeProcessedInOneBlockAndTheOwnersStreamIsWhole) {
    const Signal b = alone("b");
    const auto older = unit();
    const auto newer = unit();
    older->setFile("a");
    newer->setFile("b");
    Signal dry(kBlock);
    Signal out(in.size());
    for (std::size_t n = 0; n < in.size(); n += kBlock) {
        tvk::BackgroundJobs::waitUntilIdle();
        older->process(&in[n], &in[n], dry.data(), dry.data());
        newer->process(&in[n], &in[n], &out[n], &out[n]);
    }
    EXPECT_EQ(out, b);
}

TEST_F(SharedConvolverTest, AUnitThatWantsNoCabinetTakesNothingFromAnother) {
    const Signal a = alone("a");
    const auto older = unit();
    older->setFile("a");
    const auto newer = unit();
    newer->setFile("none");
    EXPECT_EQ(play(*older, in), a);
    EXPECT_EQ(play(*newer, in), in);
    EXPECT_EQ(complaints(), Lines{});
}

TEST_F(SharedConvolverTest, ANewUnitPlaysWhenTheOldOneIsGone) {
    const Signal b = alone("b");
    auto older = unit();
    older->setFile("a");
    const auto newer = unit();
    newer->setFile("b");
    play(*older, in);
    older.reset();
    EXPECT_EQ(play(*newer, in), b);
}

TEST_F(SharedConvolverTest, TheSpeakersCurveRunsOnTheResponseAlone) {
    writeUser("wire", impulse(1));
    const auto plain = unit();
    plain->setFile("wire");
    const Signal flat = play(*plain, impulse(44096));
    plain->setSICID("Arvel");
    plain->setFile("wire");
    const Signal curved = play(*plain, impulse(44096));
    SICQNS curve(kBlock, kRateHz);
    curve.setSICID("Arvel");
    const Signal truth = play(curve, flat);
    for (std::size_t n = 0; n < truth.size(); ++n)
        ASSERT_NEAR(curved[n], truth[n], 1e-6f) << n;
    plain->setFile("none");
    EXPECT_EQ(play(*plain, in), in);
}

TEST_F(SharedConvolverTest, ProcessNeitherAllocatesNorLocksInAnyState) {
    const auto owner = unit();
    const auto other = unit();
    Signal out(kBlock);
    const RealtimeGuard guard;
    for (const char* const name : {"a", "none", "missing", "b"}) {
        owner->setFile(name);
        owner->setHPF(300.0f, false);
        for (int block = 0; block < 20; ++block) {
            const tvk::RealtimeThreadScope realtime;
            owner->process(in.data(), in.data(), out.data(), out.data());
            other->process(in.data(), in.data(), out.data(), out.data());
        }
    }
    EXPECT_EQ(guard.violations(), RealtimeGuard::Violations{});
}

TEST_F(SharedConvolverTest, AStormOfLoadsAndKnobsEndsWithTheRightCabinet) {
    constexpr int kRounds = 150;
    const Signal b = alone("b");
    auto amp = unit();
    std::atomic<bool> running{true};
    std::atomic<bool> isFinite{true};
    std::thread audio([&] {
        Signal out(kBlock);
        while (running.load(std::memory_order_relaxed)) {
            const tvk::RealtimeThreadScope realtime;
            amp->process(in.data(), in.data(), out.data(), out.data());
            if (!std::all_of(out.begin(), out.end(), [](float x) { return std::isfinite(x); }))
                isFinite.store(false);
        }
    });
    for (int round = 0; round < kRounds; ++round) {
        amp->setFile(round % 5 == 0 ? "none" : round % 7 == 0 ? "missing" : round % 2 == 0 ? "a" : "b");
        amp->setHPF(20.0f + static_cast<float>(round), false);
        amp->setLPF(1000.0f + 10.0f * static_cast<float>(round), round % 3 == 0);
        amp->setOutputLevel(static_cast<float>(-round % 30), false);
        amp->setSICID(round % 2 == 0 ? "Arvel" : "None");
    }
    running.store(false);
    audio.join();
    EXPECT_TRUE(isFinite);
    amp->setHPF(20.0f, true);
    amp->setLPF(20000.0f, true);
    amp->setOutputLevel(0.0f, true);
    amp->setSICID("None");
    amp->setFile("none");
    play(*amp, Signal(3 * kBlock));  // the filters empty themselves
    amp->setFile("b");
    const Signal out = play(*amp, in);
    for (std::size_t n = 0; n < out.size(); ++n)
        ASSERT_NEAR(out[n], b[n], 1e-5f) << n;
}

}  // namespace
