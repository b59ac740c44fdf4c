// Preset loads on one thread and knobs on another while the audio thread runs on the machine's clock: what
// the thread sanitizer has to see.
#include <array>
#include <atomic>
#include <cmath>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include "desk/soundcard/VirtualCard.h"
#include "proj/models/Model.h"
#include "proj/platform/Platform.h"
#include "support/LogRecorder.h"
#include "utility/Clock.h"
#include "utility/RealtimeLogWriter.h"

using tvk::desk::FrameRing;
using tvk::desk::VirtualCard;

namespace {

void turnEverything(Model& model, float position) {
    model.setNormalVolume(position);
    model.setNormalTreble(1.0f - position);
    model.setNormalMiddle(position);
    model.setNormalBass(position);
    model.setNormalBrightSwitch(position > 0.5f);
    model.setVibratoVolume(position);
    model.setVibratoTreble(position);
    model.setVibratoMiddle(1.0f - position);
    model.setVibratoBass(position);
    model.setVibratoReverb(position);
    model.setVibratoReverbMute(position > 0.5f);
    model.setVibratoSpeed(position);
    model.setVibratoIntensity(position);
    model.setVibratoBrightSwitch(position < 0.5f);
    model.setVibratoTremoloMute(position < 0.5f);
    model.setStandbySwitch(position < 0.5f);
    model.setMasterVolume(position);
}

VirtualCard::Settings endlessGuitar() {
    VirtualCard::Settings settings;
    settings.loop = true;
    for (auto& guitar : settings.guitars)
        for (int i = 0; i < 441; ++i)
            guitar.push_back(0.1f * std::sin(6.2831853f * static_cast<float>(i) / 100.0f));
    return settings;
}

}  // namespace

TEST(TwoControlThreads, LoadsAndKnobsLeaveARunningAmplifier) {
    LogRecorder log;
    const tvk::RealtimeLogWriter realtimeLog;
    VirtualCard::installConfiguration();
    VirtualCard& card = VirtualCard::instance();
    card.configure(endlessGuitar());
    tvk::Platform platform = tvk::productPlatform();
    platform.homeRoot = TARVEK_PRODUCT_HOME;
    Model model(platform);
    card.beginTransport();

    constexpr int kLoads = 30;
    std::atomic<bool> isLoading{true};
    std::thread loader([&] {
        for (int i = 0; i < kLoads; ++i)
            model.setAudioProcessingPreset(i % 5);
        isLoading.store(false);
    });
    std::thread turner([&] {
        int step = 0;
        do {
            turnEverything(model, static_cast<float>(step++ % 101) / 100.0f);
            tvk::Clock::current().sleepFor(std::chrono::microseconds(500));
        } while (isLoading.load());
    });
    loader.join();
    turner.join();
    EXPECT_EQ(log.startingWith("AudioProcessor: Created UI for ").size(), static_cast<std::size_t>(kLoads));

    model.setAudioProcessingPreset(2);
    turnEverything(model, 0.5f);
    std::vector<FrameRing::Frame> frames(1 << 16);
    while (card.takeOutput(frames.data(), frames.size()) == frames.size()) {
    }
    // It still sounds, whatever the machine did to the audio thread in the meantime.
    bool isSounding = false;
    for (int look = 0; look < 1000 && !isSounding; ++look) {
        tvk::Clock::current().sleepFor(std::chrono::milliseconds(10));
        const std::size_t count = card.takeOutput(frames.data(), frames.size());
        for (std::size_t i = 0; i < count; ++i) {
            ASSERT_TRUE(std::isfinite(frames[i].speaker) && std::isfinite(frames[i].line));
            isSounding = isSounding || std::abs(frames[i].speaker) > 0.01f;
        }
    }
    EXPECT_TRUE(isSounding);
}
