// The links over what stands in for the devices: a socket pair, a listening socket, a pseudo-terminal.
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "client/ClientError.h"
#include "client/HidrawLink.h"
#include "client/OpenLink.h"
#include "client/SocketLink.h"
#include "support/ClientVectors.h"
#include "support/PtyPair.h"
#include "support/TemporaryFolder.h"

using namespace tvk::client;
using std::chrono::milliseconds;

namespace {

constexpr milliseconds kOnlyLook{0};

Report reportOfByte(std::uint8_t byte) {
    Report report{};
    report.fill(byte);
    return report;
}

std::string failureTextOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const ClientError& error) {
        return std::to_string(static_cast<int>(error.getFailure())) + " " + error.what();
    }
    return {};
}

class SocketLinkTest : public testing::Test {
protected:
    SocketLinkTest() {
        int ends[2] = {-1, -1};
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK, 0, ends), 0);
        far = Descriptor(ends[0]);
        link = std::make_unique<SocketLink>(Descriptor(ends[1]), "the socket");
    }
    void say(std::size_t count) {
        const std::vector<std::uint8_t> bytes(count, 7);
        EXPECT_EQ(::send(far.get(), bytes.data(), count, 0), static_cast<ssize_t>(count));
    }

    Descriptor far;
    std::unique_ptr<SocketLink> link;
    Report report{};
};

}  // namespace

TEST_F(SocketLinkTest, APacketIsAReport) {
    EXPECT_TRUE(link->send(reportOfByte(9)));
    Report arrived{};
    EXPECT_EQ(recv(far.get(), arrived.data(), arrived.size(), MSG_TRUNC), 64);
    EXPECT_EQ(arrived, reportOfByte(9));
    EXPECT_FALSE(link->receive(report, kOnlyLook));
    say(64);
    EXPECT_TRUE(link->receive(report, kOnlyLook));
    EXPECT_EQ(report, reportOfByte(7));
}

TEST_F(SocketLinkTest, PacketsOfAnotherSizeAreDropped) {
    for (const std::size_t size : {1u, 63u, 65u, 1000u}) {
        say(size);
        EXPECT_FALSE(link->receive(report, kOnlyLook)) << size;
    }
    say(64);
    EXPECT_TRUE(link->receive(report, kOnlyLook));
}

TEST_F(SocketLinkTest, AFullLinkTakesNoneAndTakesAgain) {
    int taken = 0;
    while (link->send(reportOfByte(1)))
        ++taken;
    // Enough for a peer that looks every few milliseconds, and not so much that progress means nothing.
    EXPECT_GE(taken, 8);
    EXPECT_LE(taken, 200);
    Report arrived{};
    for (int i = 0; i < taken; ++i)
        EXPECT_EQ(recv(far.get(), arrived.data(), arrived.size(), 0), 64);
    EXPECT_EQ(recv(far.get(), arrived.data(), arrived.size(), 0), -1);
    EXPECT_TRUE(link->send(reportOfByte(2)));
}

TEST_F(SocketLinkTest, AClosedEndIsSaid) {
    far = Descriptor();
    EXPECT_TRUE(failureTextOf([this] {
                    link->receive(report, kOnlyLook);
                }).starts_with("3 the socket: the other end"));
    EXPECT_TRUE(failureTextOf([this] { link->send(report); }).starts_with("3 the socket: the other end"));
}

TEST_F(SocketLinkTest, WhatCameBeforeTheEndIsStillRead) {
    say(64);
    far = Descriptor();
    EXPECT_TRUE(link->receive(report, kOnlyLook));
}

TEST(OpenLink, ASocketIsConnected) {
    const TemporaryFolder folder;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    folder.file("hid").copy(address.sun_path, sizeof address.sun_path - 1);
    const Descriptor listener(socket(AF_UNIX, SOCK_SEQPACKET, 0));
    ASSERT_EQ(bind(listener.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listener.get(), 1), 0);
    const auto link = openLink(folder.file("hid"));
    const Descriptor far(accept(listener.get(), nullptr, nullptr));
    EXPECT_TRUE(link->send(reportOfByte(5)));
    Report arrived{};
    EXPECT_EQ(recv(far.get(), arrived.data(), arrived.size(), 0), 64);
    EXPECT_EQ(arrived, reportOfByte(5));
}

TEST(OpenLink, WhatIsNoLinkIsSaidWithItsPath) {
    const TemporaryFolder folder;
    std::ofstream(folder.file("file")) << "text";
    const auto open = [](const std::string& path) { return failureTextOf([&path] { openLink(path); }); };
    EXPECT_TRUE(open(folder.file("none")).starts_with("3 " + folder.file("none") + ": No such file"));
    EXPECT_EQ(open(folder.file("file")),
              "3 " + folder.file("file") + ": neither a socket nor a character device");
    EXPECT_TRUE(open(folder.path().string()).starts_with("3 "));
    // A path that no socket can have.
    EXPECT_TRUE(failureTextOf([] { SocketLink link("/tmp/" + std::string(200, 'x')); }).starts_with("3 "));
    // A socket on which nobody listens any more.
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    folder.file("dead").copy(address.sun_path, sizeof address.sun_path - 1);
    {
        const Descriptor listener(socket(AF_UNIX, SOCK_SEQPACKET, 0));
        ASSERT_EQ(bind(listener.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    }
    EXPECT_TRUE(open(folder.file("dead")).starts_with("3 " + folder.file("dead") + ": Connection refused"));
}

TEST(HidrawLink, AWriteIsTheReportsNumberAndTheReport) {
    PtyPair pty;
    const auto link = openLink(pty.path());
    for (const auto& vector : ClientVectors(TARVEK_CLIENT_VECTORS).reports) {
        Report report{};
        ASSERT_EQ(vector.toDevice.size(), report.size());
        std::ranges::copy(vector.toDevice, report.begin());
        EXPECT_TRUE(link->send(report));
        const std::string written = pty.receive(65);
        EXPECT_EQ(ClientVectors::Bytes(written.begin(), written.end()), vector.hidraw);
    }
    EXPECT_EQ(pty.received(), "");
}

TEST(HidrawLink, AReadIsTheReportAlone) {
    PtyPair pty;
    HidrawLink link(pty.path());
    Report report{};
    EXPECT_FALSE(link.receive(report, kOnlyLook));
    pty.deliver(reportOfByte(3));
    EXPECT_TRUE(link.receive(report, kOnlyLook));
    EXPECT_EQ(report, reportOfByte(3));
}

TEST(HidrawLink, AReadOfAnotherSizeIsNoReport) {
    PtyPair pty;
    HidrawLink link(pty.path());
    Report report{};
    for (const std::size_t size : {1u, 63u, 65u}) {
        pty.deliver(std::string(size, 'x'));
        EXPECT_FALSE(link.receive(report, kOnlyLook)) << size;
    }
    pty.deliver(reportOfByte(3));
    EXPECT_TRUE(link.receive(report, kOnlyLook));
}

TEST(HidrawLink, ANodeThatIsGoneIsSaid) {
    PtyPair pty;
    HidrawLink link(pty.path());
    pty.hangUp();
    Report report{};
    const std::string failure = failureTextOf([&] { link.receive(report, kOnlyLook); });
    EXPECT_TRUE(failure.starts_with("3 " + pty.path() + ": the amplifier is gone")) << failure;
    EXPECT_EQ(failureTextOf([&] { link.send(report); }), failure);
}
