// The whole program on the virtual card with its panel and its host, in this process: what tarvek-desk is,
// for tests that reach into it.
#pragma once

#include <atomic>
#include <fcntl.h>
#include <functional>
#include <string>
#include <unistd.h>

#include "core/ProductProfile/ProductProfile.h"
#include "desk/DeskClock.h"
#include "desk/DeskPlatform.h"
#include "desk/Endpoints.h"
#include "desk/Peers.h"
#include "desk/ProductRoot.h"
#include "desk/soundcard/VirtualCard.h"
#include "panel/ControlProcessor.h"
#include "proj/runner/Runner.h"
#include "support/SteppedClientClock.h"
#include "support/TemporaryFolder.h"
#include "utility/BackgroundJobs.h"

class DeskAmplifier {
public:
    static constexpr int kRateHz = 44100;

    DeskAmplifier() {
        tvk::desk::VirtualCard::installConfiguration();
        settings.clock = tvk::desk::VirtualCard::ClockMode::Virtual;
        settings.loop = true;
        settings.sensitiveGainDb =
            ProductProfile((root.homeRoot / "product_profile.json").string()).getDreGainDeltaDb();
    }
    ~DeskAmplifier() {
        if (uart_ != -1) close(uart_);
    }
    DeskAmplifier(const DeskAmplifier&) = delete;
    DeskAmplifier& operator=(const DeskAmplifier&) = delete;

    // Runs the program until the session returns, which starts when all is built. startsHeld: time stands at
    // the guitar's start. awaitRest as VirtualTime has it; none lets the threads run free of each other, and
    // the card's time wait for the audio's helpers alone.
    void run(tvk::desk::Script script, bool startsHeld, std::function<void()> awaitRest,
             const std::function<void(Model&)>& session) {
        card.configure(settings);
        using Starts = tvk::desk::DeskClock::Starts;
        tvk::desk::DeskClock clock(card.virtualTime(), awaitRest ? Starts::InOrder : Starts::AtOnce);
        card.virtualTime().setAwaitRest(awaitRest ? std::move(awaitRest)
                                                  : [] { tvk::BackgroundJobs::waitUntilIdle(); });
        tvk::desk::Peers peers(
            endpoints, &card.virtualTime(),
            {tvk::panel::ControlProcessor(tvk::panel::demonstrationPins(0)), true, std::move(script)});
        uart_ = open(endpoints.uart().c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        tvk::Platform platform = tvk::desk::deskPlatform(root, endpoints, peers, clock);
        platform.panelReplayed = [this, &peers, startsHeld] {
            if (replays_++ > 0) return;
            card.beginTransport();
            peers.startScript();
            if (startsHeld) card.virtualTime().hold();
        };
        platform.session = [&](Model& model, tvk::StopSignal&) {
            session(model);
            card.endTransport();
            card.virtualTime().release();
        };
        tvk::StopSignal stop;
        tvk::runApplication(platform, stop);
    }

    // As a panel; one thread at a time.
    void send(const tvk::panel::Frame& frame) const {
        const std::string bytes = *tvk::panel::encode(frame);
        if (write(uart_, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
            throw std::runtime_error("the line took less than a frame");
    }

    // Of a client whose waits let the card's time pass.
    SteppedClientClock clientClock() const {
        tvk::desk::VirtualTime& time = card.virtualTime();
        return {[&time] { return time.now(); }, [&time](std::chrono::milliseconds step) { time.run(step); }};
    }

    // How often a preset has been given all controls. Any thread.
    int replays() const { return replays_; }

    TemporaryFolder folder;
    const tvk::desk::ProductRoot root = tvk::desk::ProductRoot::open(folder.path() / "root");
    const tvk::desk::Endpoints endpoints{folder.path() / "root"};
    tvk::desk::VirtualCard& card = tvk::desk::VirtualCard::instance();
    tvk::desk::VirtualCard::Settings settings;

private:
    std::atomic<int> replays_{0};
    int uart_ = -1;
};
