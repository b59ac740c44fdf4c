// Parameters and connections change on a control thread while the audio thread processes.
#include <algorithm>
#include <atomic>
#include <cmath>
#include <gtest/gtest.h>
#include <thread>

#include "TestUnits.h"

namespace {

TEST(LiveChanges, NeverDriveTheOutputBeyondItsBounds) {
    BypassUnit unit;
    float loud[kBlock], louder[kBlock];
    std::atomic<bool> hasEnded{false};
    std::thread control([&] {
        for (int round = 0; round < 2000; ++round) {
            const bool on = round % 2 == 0;
            unit.parameter<bool>("bypass").set(on);
            unit.parameter<bool>("muteInput").set(!on);
            unit.parameter<bool>("muteOutput").init(round % 5 == 0);
            unit.parameter<bool>("bypass").init(round % 3 == 0);
            unit.parameter<std::string>("bypassType")
                .set(round % 3 == 0   ? "Pre"
                     : round % 3 == 1 ? "Post"
                                      : "PostNoPreKill");
            unit.setGlobalFxBypass(round % 7 == 0);
            unit.parameter<float>("tapTime").set(0.001f * static_cast<float>(round));
            unit.parameter<bool>("clipState").get();
            unit.connectInput(0, on ? loud : louder, round);
            unit.disconnectInput(0, round - 1);
            unit.connectInput(1, on ? louder : loud, round);
            unit.disconnectInput(1, round - 1);
        }
        hasEnded = true;
    });
    float highest = 0.0f;
    do {
        std::fill_n(loud, kBlock, 1.0f);
        std::fill_n(louder, kBlock, -2.0f);
        unit.process();
        for (int channel : {0, 1}) {
            for (int n = 0; n < kBlock; ++n)
                highest = std::max(highest, std::abs(unit.getOutputAddr(channel)[n]));
        }
    } while (!hasEnded);
    control.join();
    // Gains lie between 0 and 1, wet and dry sum to 1, and the algorithm copies.
    EXPECT_LE(highest, 2.0f * (1.0f + 1e-5f));
    EXPECT_FALSE(std::isnan(highest));
}

}  // namespace
