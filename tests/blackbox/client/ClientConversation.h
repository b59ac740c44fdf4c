// An amplifier on a desk and a client at its socket, both in the test's time.
#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <complex>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <memory>
#include <numbers>
#include <optional>
#include <string>
#include <vector>

#include "blackbox/support/HeldDesk.h"
#include "client/ClientError.h"
#include "client/Requests.h"
#include "client/Session.h"
#include "client/SocketLink.h"
#include "support/SteppedClientClock.h"

// What has passed on the desk.
inline std::chrono::nanoseconds timeOf(const HeldDesk& desk) {
    return std::chrono::milliseconds(std::llround(desk.time() * 1e3));
}

// Of a client whose waits let the desk's time pass.
inline SteppedClientClock clientClockOf(HeldDesk& desk) {
    return {
        [&desk] { return timeOf(desk); },
        [&desk](std::chrono::milliseconds step) { desk.run(std::chrono::duration<double>(step).count()); }};
}

// One program with a connection.
struct Client {
    explicit Client(HeldDesk& desk)
        : link(desk.readyText("hid")), clock(clientClockOf(desk)), session(link, clock) {
        session.connect();
    }

    tvk::client::SocketLink link;
    SteppedClientClock clock;
    tvk::client::Session session;
};

class ClientConversation : public DeskRun {
protected:
    using State = tvk::client::Exchange::State;

    // Two low tones and two high ones, by which cabinets are told apart.
    void start(std::vector<std::string> more = {}) {
        client_.reset();
        desk_.reset();
        std::vector<std::string> arguments = withFiles(
            "out", {"--in", guitar("guitar", tones()), "--loop", "--knob", "PC_0=0", "--knob", "PA_0=0"});
        arguments.insert(arguments.end(), more.begin(), more.end());
        desk_ = std::make_unique<HeldDesk>(folder(), arguments);
        desk_->run(0.05);
    }

    void connect() { client_ = std::make_unique<Client>(*desk_); }
    void hangUp() { client_.reset(); }

    // What the amplifier answers; the exchange must come to that state.
    std::vector<TarvekMessage> ask(const TarvekMessage& request, State expected = State::Done) {
        const tvk::client::Exchange exchange = client_->session.ask(request);
        EXPECT_EQ(static_cast<int>(exchange.state), static_cast<int>(expected))
            << request.ShortDebugString().substr(0, 200);
        return exchange.replies;
    }

    // The texts of the answer's messages, without what every message has.
    std::vector<std::string> answersTo(const TarvekMessage& request, State expected = State::Done) {
        std::vector<std::string> texts;
        for (TarvekMessage reply : ask(request, expected)) {
            EXPECT_TRUE(reply.ignore_this_padding());
            reply.clear_ignore_this_padding();
            texts.push_back(reply.ShortDebugString());
        }
        return texts;
    }

    CabsimIRListRecord slot(int index) {
        const auto replies = ask(tvk::client::requests::cabsimIRList());
        return replies.back().cabsimirlistresponse().record(index);
    }

    std::vector<std::string> userNames() {
        std::vector<std::string> names;
        const auto replies = ask(tvk::client::requests::userIRList());
        for (const auto& record : replies.back().userirlistresponse().record())
            names.push_back(record.name() + (record.exists() ? "" : " (missing)"));
        return names;
    }

    static std::string fileOf(const std::filesystem::path& path) { return readText(path.string()); }

    // A response that is a file of the product: TestCabinet1 passes what is below 1 kHz.
    static std::string testCabinet(int which) {
        return fileOf(std::filesystem::path(TARVEK_PRODUCT_HOME) / "IRs" /
                      ("TestCabinet" + std::to_string(which) + ".wav"));
    }

    std::filesystem::path userData() const { return folder() / "root" / "mnt" / "user-data"; }

    HeldDesk& desk() { return *desk_; }
    tvk::client::Session& session() { return client_->session; }

    // Half a second of sound from now on, to be looked at with trebleOf once the desk has stopped.
    double listen() {
        desk_->run(0.3);
        const double from = desk_->time();
        desk_->run(0.6);
        return from;
    }

    // The line feed's high tones against its low ones, in dB, in the half second from there on.
    double trebleOf(double from) {
        stop();
        const Samples line = readWav(outFile("out"))[1];
        const auto start = static_cast<std::size_t>(from * kRateHz);
        const auto level = [&](double hz) {
            std::complex<double> bin;
            for (std::size_t i = start; i < start + kRateHz / 2; ++i)
                bin += static_cast<double>(line.at(i)) *
                       std::polar(1.0, -2.0 * std::numbers::pi * hz * static_cast<double>(i) / kRateHz);
            return std::abs(bin);
        };
        return 20.0 * std::log10((level(3000.0) + level(4000.0)) / (level(300.0) + level(500.0)));
    }

    static Samples tones() {
        Samples sum(kRateHz, 0.0f);
        for (const double hz : {300.0, 500.0, 3000.0, 4000.0}) {
            const Samples tone = sine(hz, 0.004f, 1.0);
            std::transform(sum.begin(), sum.end(), tone.begin(), sum.begin(), std::plus<>());
        }
        return sum;
    }

    void stop() {
        client_.reset();
        if (!desk_) return;
        desk_->stop();
        desk_.reset();
    }

private:
    std::unique_ptr<HeldDesk> desk_;
    std::unique_ptr<Client> client_;
};
