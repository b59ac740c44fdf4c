// The connection over a raw pseudo-terminal in place of the gadget driver's device, report by report.
#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "TarvekMessage.pb.h"
#include "proj/network/ClientManager.h"
#include "proj/network/ClientMessage.h"
#include "support/LogRecorder.h"
#include "support/PacedClock.h"
#include "support/PtyPair.h"
#include "support/TemporaryFolder.h"

using namespace std::chrono_literals;
using namespace std::string_literals;

namespace {

std::string padded(std::string report) {
    report.resize(64, '\0');
    return report;
}

class HidLinkTest : public testing::Test {
protected:
    ~HidLinkTest() override { clock.release(); }

    // The device's name is a link to the terminal.
    std::unique_ptr<PtyPair> plugged() const {
        auto fresh = std::make_unique<PtyPair>();
        std::filesystem::create_symlink(fresh->path(), device);
        return fresh;
    }
    void unplug() {
        std::filesystem::remove(device);
        pty->hangUp();
    }
    // A host's report, and the time that the amplifier takes to see it.
    void host(const std::string& report) {
        pty->deliver(padded(report));
        clock.advance(1ms);
    }
    bool hasRequest() {
        tvk::ClientMessage message;
        return clients.popMessage(message);
    }

    LogRecorder log;
    TemporaryFolder folder;
    const std::string device = folder.file("hidg0");
    PacedClock clock{1};
    std::unique_ptr<PtyPair> pty = plugged();
    tvk::ClientManager clients{device};
};

}  // namespace

TEST_F(HidLinkTest, ARequestComesInAsOneReportAndTheAnswerGoesOutAsOne) {
    clock.advance(1ms);
    // End frame of 6 bytes: connectionMessage (4) of connectionRequest (1) of dummy (1) true.
    host("5\0\6\x22\4\x0A\2\x08\1"s);
    tvk::ClientMessage received;
    ASSERT_TRUE(clients.popMessage(received));
    ASSERT_TRUE(received.message->connectionmessage().has_connectionrequest());
    clients.handleConnectionMessage(received.clientId, *received.message);
    clock.advance(1ms);
    // Id 0, end frame of 8 bytes: padding (1) true, connectionMessage of connectionResponse (2) of
    // clientId 1.
    EXPECT_EQ(pty->receive(64), padded("\0"
                                       "5\0\x08\x08\1\x22\4\x12\2\x08\1"s));
}

TEST_F(HidLinkTest, AMessageOverSeveralReportsIsPutTogether) {
    clock.advance(1ms);
    // removeUserIR with a slot, between unknown fields that make it long.
    const std::string filler = "\xDA\x0C\x35" + std::string(53, 'f');
    const std::string message = filler + "\xC2\1\2\x08\7"s;
    ASSERT_EQ(message.size(), 61u);
    host("3\0\x3C"s + message.substr(0, 60));
    EXPECT_FALSE(hasRequest());
    pty->deliver(padded("5\0\1"s + message.substr(60)));
    clock.advance(1ms);
    tvk::ClientMessage received;
    ASSERT_TRUE(clients.popMessage(received));
    EXPECT_EQ(received.message->removeuserir().slot(), 7u);
}

TEST_F(HidLinkTest, TheLastByteOfAReportIsNoPartOfAFrame) {
    clock.advance(1ms);
    std::string report = padded("5\0\6\x22\4\x0A\2\x08\1"s);
    report[63] = '\xFF';
    host(report);
    EXPECT_TRUE(hasRequest());
    // A frame that claims it is one byte too long.
    host("5\0\x3D"s + std::string(61, 'x'));
    EXPECT_TRUE(log.has("Error Payload size too large. Returning false."));
    EXPECT_FALSE(hasRequest());
}

TEST_F(HidLinkTest, UnpluggingClosesTheDeviceAndPluggingOpensItAgain) {
    clock.advance(1ms);
    EXPECT_EQ(log.count("HIDDevice: Opened device."), 1);
    unplug();
    clock.advance(1s);
    EXPECT_EQ(log.count("Warn Transport communication problem."), 1);
    EXPECT_EQ(log.count("HIDDevice: Device closed."), 1);
    EXPECT_EQ(log.count("Warn Failed to open HID device."), 1);
    pty = plugged();
    clock.advance(1ms);
    EXPECT_EQ(log.count("HIDDevice: Opened device."), 2);
    host("5\0\6\x22\4\x0A\2\x08\1"s);
    EXPECT_TRUE(hasRequest());
}

TEST_F(HidLinkTest, WhatAHostSentBeforeItWasUnpluggedIsNotPartOfWhatComesAfter) {
    clock.advance(1ms);
    host("3\0\x3C"s + std::string(60, 'x'));
    unplug();
    clock.advance(10ms);
    pty = plugged();
    clock.advance(1ms);
    host("5\0\6\x22\4\x0A\2\x08\1"s);
    EXPECT_TRUE(hasRequest());
    EXPECT_TRUE(log.startingWith("Error").empty());
}
