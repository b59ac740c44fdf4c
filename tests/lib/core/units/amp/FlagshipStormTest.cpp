// The whole amp under loads and knobs from two control threads while its audio thread runs.
#include <atomic>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <mutex>
#include <numbers>
#include <thread>

#include "algorithms/reverb/SpringTankResponse.h"
#include "core/Parameter/Parameter.h"
#include "core/units/amp/DUBS_NorvaneArvelReverb65.h"
#include "lib/algorithms/cabsim/CabinetFixture.h"
#include "utility/RealtimeThread.h"

namespace {

class FlagshipStorm : public CabinetFixture {
protected:
    static constexpr int kLoads = 1000;
    static constexpr float kVolts = 1.2f;
    // One period of the tone in a block, so that every block of a steady amp is the same.
    static constexpr double kToneHz = double(kRateHz) / kBlock;

    FlagshipStorm() {
        SpringTankResponse::setFile("");
        IRProcessorPool::fill({processor});
        writeUser("wire", impulse(1));
        writeUser("pad", {0.5f});
        for (int n = 0; n < kBlock; ++n)
            tone.push_back(
                static_cast<float>(0.05 * std::sin(2.0 * std::numbers::pi * kToneHz * n / double(kRateHz))));
    }
    ~FlagshipStorm() override { SpringTankResponse::setFile(SpringTankResponse::kFile); }

    static DUBS_NorvaneArvelReverb65 makeAmp() {
        return {"DUBS_NorvaneArvelReverb65", kBlock, kRateHz, kVolts};
    }
    template <typename T>
    static void set(DUBS_NorvaneArvelReverb65& amp, const char* name, const T& value) {
        dynamic_cast<Parameter<T>&>(*amp.getParameter(name)).set(value);
    }
    static double levelOf(const Signal& block) {
        double sum = 0.0;
        for (const float x : block)
            sum += double(x) * x;
        return std::sqrt(sum / kBlock);
    }
    double playBlock(DUBS_NorvaneArvelReverb65& amp) {
        Signal left = tone, right(kBlock), speaker(kBlock), line(kBlock);
        amp.process(left.data(), right.data(), speaker.data(), line.data());
        return levelOf(line);
    }
    // The line feed once everything has settled.
    double settledLevel(DUBS_NorvaneArvelReverb65& amp) {
        double level = 0.0;
        for (int block = 0; block < 3000; ++block) {
            level = playBlock(amp);
            tvk::BackgroundJobs::waitUntilIdle();
        }
        return level;
    }

    const std::shared_ptr<IRProcessor> processor = convolver();
    Signal tone;
};

// Both responses let the signal through, one of them at half. So the line feed may be at full or at half
// level in the storm, dry signal being full, but never under that for a block.
TEST_F(FlagshipStorm, AThousandLoadsLeaveNoGapAndTheRightCabinet) {
    auto amp = makeAmp();
    set(amp, "idCabinet", std::string("wire"));
    set(amp, "idCabinetLevel", 0.0f);
    const double full = settledLevel(amp);
    ASSERT_GT(full, 1e-3);

    std::mutex control;  // setters take turns, as in the engine
    std::atomic<bool> isRunning{true};
    std::atomic<long> blocks{0};
    std::atomic<long> gaps{0};
    std::thread audio([&] {
        const tvk::RealtimeThreadScope realtime;
        while (isRunning.load(std::memory_order_relaxed)) {
            if (playBlock(amp) < 0.2 * full) gaps.fetch_add(1);
            blocks.fetch_add(1);
        }
    });
    std::thread knobs([&] {
        for (int turn = 0; isRunning.load(std::memory_order_relaxed); ++turn) {
            const float position = static_cast<float>(turn % 100) / 99.0f;
            const std::lock_guard lock(control);
            set(amp, "idReverb", position);
            set(amp, "idSpeed", position);
            set(amp, "idIntensity", position);
            set(amp, "idNormalBright", turn % 2 == 0);
            set(amp, "idNormalTreb", 0.5f + 0.5f * position);
            set(amp, "idVibratoVol", position);
            set(amp, "idCabinetHPF", 20.0f + 100.0f * position);
            set(amp, "idCabinetLPF", 10000.0f + 10000.0f * position);
        }
    });
    for (int load = 0; load < kLoads; ++load) {
        const std::lock_guard lock(control);
        set(amp, "idCabinet", std::string(load % 5 == 4 ? "none" : load % 2 == 0 ? "wire" : "pad"));
    }
    isRunning.store(false);
    audio.join();
    knobs.join();
    EXPECT_EQ(gaps, 0) << "of " << blocks << " blocks";
    EXPECT_GT(blocks, kLoads / 10);

    set(amp, "idReverb", 0.0f);
    set(amp, "idIntensity", 0.0f);
    set(amp, "idNormalBright", false);
    set(amp, "idNormalTreb", 0.5f);
    set(amp, "idCabinetHPF", 20.0f);
    set(amp, "idCabinetLPF", 20000.0f);
    for (const auto& [name, gain] : {std::pair{"pad", 0.5}, {"wire", 1.0}, {"pad", 0.5}}) {
        set(amp, "idCabinet", std::string(name));
        EXPECT_NEAR(settledLevel(amp) / full, gain, 0.01) << name;
    }
}

}  // namespace
