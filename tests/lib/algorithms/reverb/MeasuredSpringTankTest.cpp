#include <cmath>
#include <gtest/gtest.h>
#include <vector>

#include "../amp_stages/StageReference.h"
#include "algorithms/reverb/MeasuredSpringTank.h"
#include "support/LogRecorder.h"
#include "support/RealtimeGuard.h"
#include "tables/SpringTankCurves.h"
#include "utility/BackgroundJobs.h"
#include "utility/RealtimeThread.h"

namespace {

using namespace stage_reference;

constexpr float kRate = 44100.0F;
constexpr int kBlock = 32;

// Echoes of both signs that decay, long enough for a tail: more than twice the head.
Signal echoes() {
    Signal h = noise(5000, 0.3F);
    for (std::size_t n = 0; n < h.size(); ++n)
        h[n] *= n < 700 ? 0.0F : std::exp(-static_cast<float>(n) / 1500.0F);
    return h;
}

std::shared_ptr<const PreparedResponse> prepared(const Signal& h) {
    return std::make_shared<const PreparedResponse>(h.data(), static_cast<int>(h.size()), 128, 2048);
}

Signal play(MeasuredSpringTank& tank, const Signal& in, int block = kBlock) {
    Signal out(in.size());
    for (std::size_t n = 0; n + static_cast<std::size_t>(block) <= in.size();
         n += static_cast<std::size_t>(block)) {
        tank.process(&in[n], &out[n]);
        tvk::BackgroundJobs::waitUntilIdle();
    }
    return out;
}

// The way of the signal in double precision, sample by sample.
std::vector<double> reference(const Signal& in, const Signal& h) {
    const auto highPass = [](std::vector<double>& x, double hz) {
        const double c = 1.0 - std::exp(-kTurn * hz / kRate);
        double s = 0.0;
        for (double& sample : x) {
            const double y = sample - s;
            s += (sample - s) * c;
            sample = y;
        }
    };
    const auto floats = [](const std::vector<double>& x) { return Signal(x.begin(), x.end()); };
    std::vector<double> x(in.begin(), in.end());
    highPass(x, 180.0);
    x = oversampled(floats(x), 3, 10, {tables::kSpringTankDrive, 18.95668, -2.747685, 4.608292});
    std::vector<double> springs(x.size());
    for (std::size_t n = 0; n < x.size(); ++n)
        for (std::size_t k = 0; k < h.size() && k <= n; ++k)
            springs[n] += 1.4272498 * 0.00039810708 * double{h[k]} * x[n - k];
    highPass(springs, 370.0);
    const double p = std::exp(-kTurn * 1000.0 / kRate);
    double low = 0.0;
    for (double& sample : springs)
        sample = low = (1.0 - p) * sample + p * low;
    return oversampled(floats(springs), 3, 10, {tables::kSpringTankRecovery, 10.0, 70.13475, 207.2241});
}

TEST(MeasuredSpringTank, FollowsTheSignalPathForSmallAndOverdrivenInput) {
    const Signal h = echoes();
    for (float volts : {0.1F, 60.0F}) {
        MeasuredSpringTank tank(kBlock, kRate, prepared(h));
        tank.setLevel(1.0F, true);
        const Signal in = noise(8000, volts);
        const Signal out = play(tank, in);
        const auto truth = reference(in, h);
        double largest = 0.0;
        for (double sample : truth)
            largest = std::fmax(largest, std::abs(sample));
        for (std::size_t n = 0; n < in.size(); ++n)
            ASSERT_NEAR(out[n], truth[n], 1e-4 * largest) << volts << " V, sample " << n;
    }
}

TEST(MeasuredSpringTank, EveryBlockLengthGivesTheSameStream) {
    const Signal h = echoes();
    const Signal in = noise(6720, 5.0F);
    MeasuredSpringTank whole(kBlock, kRate, prepared(h));
    whole.setLevel(0.7F, true);
    const Signal expected = play(whole, in);
    for (int block : {1, 7, 64, 96}) {
        MeasuredSpringTank tank(block, kRate, prepared(h));
        tank.setLevel(0.7F, true);
        const Signal out = play(tank, in, block);
        for (std::size_t n = 0; n < out.size(); ++n)
            ASSERT_NEAR(out[n], expected[n], 2e-4) << "block " << block << ", sample " << n;
    }
}

TEST(MeasuredSpringTank, SilenceStaysSilentFromTheFirstSample) {
    MeasuredSpringTank tank(kBlock, kRate, prepared(echoes()));
    tank.setLevel(1.0F, true);
    EXPECT_EQ(play(tank, Signal(9600, 0.0F)), Signal(9600, 0.0F));
}

TEST(MeasuredSpringTank, WithoutAResponseItIsSilent) {
    MeasuredSpringTank tank(kBlock, kRate, nullptr);
    tank.setLevel(1.0F, true);
    EXPECT_EQ(play(tank, noise(3200, 10.0F)), Signal(3200, 0.0F));
}

TEST(MeasuredSpringTank, StartsWithItsLevelAtZero) {
    MeasuredSpringTank tank(kBlock, kRate, prepared(echoes()));
    EXPECT_EQ(play(tank, noise(3200, 10.0F)), Signal(3200, 0.0F));
}

// Three tanks hear the same: one as it is, at level 1 throughout, and one whose controls move.
class Controls : public testing::Test {
protected:
    static constexpr std::size_t kMoment = 6400;

    Controls() : h(echoes()), steady(kBlock, kRate, prepared(h)), moved(kBlock, kRate, prepared(h)) {
        steady.setLevel(1.0F, true);
        moved.setLevel(1.0F, true);
        const Signal before = noise(kMoment, 3.0F);
        play(steady, before);
        play(moved, before);
    }

    // Samples of the moved tank over those of the steady one, where these are not small.
    void expectGain(const Signal& in, double (*gainAt)(double seconds)) {
        const Signal truth = play(steady, in), out = play(moved, in);
        int compared = 0;
        for (std::size_t n = 0; n < in.size(); ++n) {
            if (std::abs(truth[n]) < 1e-4F) continue;
            ++compared;
            const double gain = gainAt(static_cast<double>(n + 1) / kRate);
            ASSERT_NEAR(out[n], truth[n] * gain, 3e-4 * std::abs(truth[n])) << n;
        }
        EXPECT_GT(compared, static_cast<int>(in.size() / 2));
    }

    const Signal h;
    MeasuredSpringTank steady;
    MeasuredSpringTank moved;
};

TEST_F(Controls, ALiveLevelRampsWith20Ms) {
    moved.setLevel(0.25F, false);
    expectGain(noise(4800, 3.0F), [](double t) { return 0.25 + 0.75 * std::exp(-t / 0.02); });
}

TEST_F(Controls, AnInitialLevelJumps) {
    moved.setLevel(0.25F, true);
    expectGain(noise(3200, 3.0F), [](double) { return 0.25; });
}

TEST_F(Controls, MuteRampsToSilence) {
    moved.setMute(true, false);
    expectGain(noise(3200, 3.0F), [](double t) { return std::exp(-t / 0.02); });
    const Signal after = play(moved, noise(44096, 3.0F));
    for (std::size_t n = 30000; n < after.size(); ++n)
        ASSERT_NEAR(after[n], 0.0F, 1e-6F);
}

TEST_F(Controls, TheTankRunsOnWhileMutedAndItsTailComesBack) {
    moved.setMute(true, true);
    const Signal during = noise(3200, 3.0F);
    play(steady, during);
    EXPECT_EQ(play(moved, during), Signal(3200, 0.0F));
    moved.setMute(false, true);
    expectGain(Signal(1600, 0.0F), [](double) { return 1.0; });
}

TEST(MeasuredSpringTank, SaysWhenItIsMuted) {
    const LogRecorder log;
    MeasuredSpringTank tank(kBlock, kRate, nullptr);
    tank.setMute(true, false);
    tank.setMute(false, true);
    EXPECT_EQ(log.startingWith("MeasuredSpringTank: "),
              (std::vector<std::string>{"MeasuredSpringTank: Reverb Mute: on",
                                        "MeasuredSpringTank: Reverb Mute: off"}));
}

TEST(MeasuredSpringTank, ABlockNeitherAllocatesNorLocks) {
    MeasuredSpringTank tank(kBlock, kRate, prepared(echoes()));
    tank.setLevel(1.0F, true);
    const Signal in = noise(9600, 3.0F);
    Signal out(in.size());
    RealtimeGuard::Violations violations;
    for (std::size_t n = 0; n < in.size(); n += kBlock) {
        {
            const tvk::RealtimeThreadScope realtime;
            const RealtimeGuard guard;
            tank.process(&in[n], &out[n]);
            violations.allocations += guard.violations().allocations;
            violations.frees += guard.violations().frees;
            violations.locks += guard.violations().locks;
        }
        tvk::BackgroundJobs::waitUntilIdle();
    }
    EXPECT_EQ(violations, RealtimeGuard::Violations{});
}

}  // namespace
