// Hours of playing in virtual time: a guitar, a knob each second, and in every minute a client's session, a
// change of amplifier and back, and trouble with the card or the cable. What the process holds at the end of
// each minute may not grow.
//
// TARVEK_DAY_SECONDS tells how long; ten minutes without it.
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "client/Requests.h"
#include "client/Session.h"
#include "client/SocketLink.h"
#include "desk/soundcard/Quiescence.h"
#include "proj/models/Model.h"
#include "reliability/DeskAmplifier.h"
#include "reliability/LiveAllocations.h"
#include "utility/BackgroundJobs.h"
#include "utility/Log.h"
#include "wav/GuitarFile.h"

namespace fs = std::filesystem;
namespace requests = tvk::client::requests;
using namespace std::chrono_literals;
using tvk::desk::Fault;
using tvk::desk::ScriptEvent;
using tvk::desk::VirtualCard;

namespace {

constexpr int kMinute = 60;
constexpr int kHour = 60 * kMinute;

// Within each minute; the rest of it belongs to the knobs. A connection lapses five seconds after its last
// message, before the minute ends.
constexpr int kSessionSecond = 10;
constexpr int kReloadSecond = 30;
constexpr int kXrunSecond = 35;
constexpr int kGoneSecond = 40;
constexpr int kUnplugSecond = 45;
constexpr int kPlugSecond = 47;

// Caches and queues have reached their size.
int warmMinutes(int minutes) {
    return minutes > 120 ? 60 : 2;
}

int daySeconds() {
    const char* const text = std::getenv("TARVEK_DAY_SECONDS");
    return text ? std::atoi(text) : 600;
}

std::vector<Fault> faultsOf(int seconds) {
    std::vector<Fault> faults;
    const auto periodAt = [](int second) {
        return static_cast<std::uint64_t>(second) * DeskAmplifier::kRateHz / VirtualCard::kPeriodFrames;
    };
    for (int minute = 0; minute * kMinute < seconds; ++minute) {
        const int start = minute * kMinute;
        faults.push_back({minute % 2 == 0 ? Fault::Kind::XrunCapture : Fault::Kind::XrunPlayback,
                          periodAt(start + kXrunSecond), 0});
        if (minute % 5 == 0) faults.push_back({Fault::Kind::Gone, periodAt(start + kGoneSecond), 20});
    }
    return faults;
}

tvk::desk::Script cableOf(int seconds) {
    tvk::desk::Script script;
    for (int minute = 0; minute * kMinute < seconds; ++minute)
        for (const bool isPlug : {false, true}) {
            ScriptEvent event;
            event.kind = isPlug ? ScriptEvent::Kind::Plug : ScriptEvent::Kind::Unplug;
            event.at = std::chrono::seconds(minute * kMinute + (isPlug ? kPlugSecond : kUnplugSecond));
            script.add(event);
        }
    return script;
}

struct Minute {
    LiveAllocations live;
    long descriptors;
    long threads;
};

long entriesOf(const char* folder) {
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

std::string wholeFile(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class Day : public ::testing::Test {
protected:
    void SetUp() override {
        const tvk::GuitarFile guitar(TARVEK_GUITAR, DeskAmplifier::kRateHz);
        others_.shareProcessor();
        desk_.settings.guitars = {guitar.input(0), guitar.input(1)};
        desk_.settings.faults = faultsOf(seconds_);
        response_ = wholeFile(desk_.root.homeRoot / "IRs" / "TestCabinet1.wav");
        ASSERT_FALSE(response_.empty());
    }

    void awaitRest() {
        tvk::BackgroundJobs::waitUntilIdle();
        others_.await();
    }

    void run(std::chrono::nanoseconds duration) { desk_.card.virtualTime().run(duration); }

    void turnSomething(int second) {
        static constexpr std::array<const char*, 7> kPins = {"PA_0", "PA_1", "PA_3", "PA_5",
                                                             "PA_7", "PC_0", "PC_1"};
        const auto pin = static_cast<std::size_t>(second) % kPins.size();
        desk_.send(tvk::panel::floatFrame(kPins[pin], 0.2f + 0.1f * static_cast<float>(second % 6)));
    }

    void changeAmplifier() {
        desk_.send(tvk::panel::intFrame("PF0_AND_PF1", 1));
        run(200ms);
        desk_.send(tvk::panel::intFrame("PF0_AND_PF1", 0));
        run(200ms);
    }

    // One of everything; ends without a word, as programs do.
    void clientSession() {
        using State = tvk::client::Exchange::State;
        tvk::client::SocketLink link(desk_.endpoints.hid().string());
        SteppedClientClock clock = desk_.clientClock();
        tvk::client::Session session(link, clock);
        EXPECT_EQ(session.connect().state, State::Done);
        for (const TarvekMessage& request :
             {requests::currentAmplifier(), requests::addUserIR("Mine", response_), requests::userIRList(),
              requests::factoryIRList(), requests::assignUserIR(1, "Mine"), requests::setCabsimSelection(1),
              requests::setCabsimHpf(1, 60.0f), requests::setCabsimLevel(1, -6.0f), requests::cabsimIRList(),
              requests::saveCurrentState(), requests::setReverbTaperType(0), requests::setReverbTaperType(1),
              requests::setVibratoChannelBright(true), requests::setVibratoChannelBright(false),
              requests::syncCurrentState(), requests::removeUserIR(1)})
            EXPECT_EQ(session.ask(request).state, State::Done) << request.ShortDebugString();
        ++sessions_;
    }

    // How loud the last second was.
    double loudness() {
        std::array<tvk::desk::FrameRing::Frame, 4096> frames;
        double sum = 0.0;
        std::size_t count = 0;
        while (const std::size_t got = desk_.card.takeOutput(frames.data(), frames.size())) {
            for (std::size_t i = 0; i < got; ++i)
                sum += static_cast<double>(frames[i].speaker) * frames[i].speaker;
            count += got;
        }
        return count == 0 ? 0.0 : std::sqrt(sum / static_cast<double>(count));
    }

    static Minute endOfMinute() {
        return {LiveAllocations::now(), entriesOf("/proc/self/fd"), entriesOf("/proc/self/task")};
    }
    static void tell(std::size_t minutes, const Minute& last) {
        std::printf("after %zu min: %ld live allocations, %ld bytes, %ld descriptors, %ld threads\n", minutes,
                    last.live.pieces, last.live.bytes, last.descriptors, last.threads);
        std::fflush(stdout);
    }

    void playSecond(int second) {
        const auto start = desk_.card.virtualTime().now();
        turnSomething(second);
        switch (second % kMinute) {
            case kSessionSecond:
                clientSession();
                break;
            case kReloadSecond:
                changeAmplifier();
                break;
            default:
                break;
        }
        // A session takes longer than its second.
        run(std::max<std::chrono::nanoseconds>(start + 1s - desk_.card.virtualTime().now(), 0ns));
        const double loud = loudness();
        EXPECT_TRUE(std::isfinite(loud));
        EXPECT_GT(loud, 1e-4) << "silence at second " << second;
    }

    const int seconds_ = daySeconds();
    DeskAmplifier desk_;
    tvk::desk::Quiescence others_;
    std::string response_;
    int sessions_ = 0;
};

}  // namespace

TEST_F(Day, LeavesNothingBehind) {
    std::vector<Minute> minutes;
    minutes.reserve(static_cast<std::size_t>(seconds_) / kMinute + 1);
    long xruns = 0;
    const auto start = std::chrono::steady_clock::now();
    desk_.run(
        cableOf(seconds_), true, [this] { awaitRest(); },
        [&](Model& model) {
            tvk::log::enableDebug(false);
            run(1s);
            loudness();
            for (int second = 0; second < seconds_; ++second) {
                playSecond(second);
                if (second % kMinute == kMinute - 1) minutes.push_back(endOfMinute());
                if (second % kHour == kHour - 1) tell(minutes.size(), minutes.back());
            }
            xruns = model.getXrunCount();
        });

    const int count = static_cast<int>(minutes.size());
    const int warm = warmMinutes(count);
    ASSERT_GT(count, warm);
    long most = 0;
    for (int minute = warm; minute < count; ++minute) {
        const Minute& now = minutes[static_cast<std::size_t>(minute)];
        const Minute& then = minutes[static_cast<std::size_t>(warm)];
        EXPECT_EQ(now.live.pieces, then.live.pieces) << "minute " << minute;
        EXPECT_EQ(now.descriptors, then.descriptors) << "minute " << minute;
        EXPECT_EQ(now.threads, then.threads) << "minute " << minute;
        most = std::max(most, now.live.bytes);
    }
    // One for each fault of a direction; a device that is gone fails again in each of its periods.
    EXPECT_GE(xruns, count);
    EXPECT_EQ(sessions_, count);
    std::printf(
        "%d s of playing in %.0f s: %d client sessions, %ld xruns, %ld live allocations, %ld bytes at most\n",
        seconds_, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), sessions_,
        xruns, minutes.back().live.pieces, most);
}
