// Both ends of the port at once: the device as the amplifier opens it, the socket as a host's program does.
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>

#include "client/ClientError.h"
#include "client/SocketLink.h"
#include "desk/UsbPort.h"
#include "support/TemporaryFolder.h"

using namespace std::chrono_literals;
using tvk::client::Report;
using tvk::client::SocketLink;
using tvk::desk::UsbPort;

namespace {

Report reportOf(std::uint8_t first) {
    Report report{};
    for (std::size_t n = 0; n < report.size(); ++n)
        report[n] = static_cast<std::uint8_t>(first + n);
    return report;
}

class UsbPortTest : public testing::Test {
protected:
    ~UsbPortTest() override {
        if (device_ != -1) close(device_);
    }

    void begin(bool isHostSimulated = false) {
        port_ = std::make_unique<UsbPort>(devicePath(), socketPath(), isHostSimulated);
        port_->plug();
        openDevice();
    }
    void openDevice() {
        device_ = open(devicePath().c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        ASSERT_NE(device_, -1);
    }

    // How many bytes the device took; -1 with errno for none.
    ssize_t amplifierSends(const Report& report) const {
        return write(device_, report.data(), report.size());
    }
    // How many bytes came.
    ssize_t amplifierReads(Report& report) const { return read(device_, report.data(), report.size()); }

    std::filesystem::path devicePath() const { return folder_.path() / "device"; }
    std::filesystem::path socketPath() const { return folder_.path() / "socket"; }
    std::unique_ptr<SocketLink> host() const { return std::make_unique<SocketLink>(socketPath().string()); }

    TemporaryFolder folder_;
    std::unique_ptr<UsbPort> port_;
    int device_ = -1;
};

}  // namespace

TEST_F(UsbPortTest, CarriesOneReportEachWayAtATime) {
    begin();
    const auto program = host();
    ASSERT_TRUE(program->send(reportOf(1)));
    ASSERT_TRUE(program->send(reportOf(2)));
    port_->exchange();
    Report got{};
    EXPECT_EQ(amplifierReads(got), 64);
    EXPECT_EQ(got, reportOf(1));
    EXPECT_EQ(amplifierReads(got), -1);
    EXPECT_EQ(amplifierSends(reportOf(7)), 64);
    port_->exchange();
    EXPECT_EQ(amplifierReads(got), 64);
    EXPECT_EQ(got, reportOf(2));
    ASSERT_TRUE(program->receive(got, 0ms));
    EXPECT_EQ(got, reportOf(7));
    EXPECT_FALSE(program->receive(got, 0ms));
}

TEST_F(UsbPortTest, TellsWhetherAnythingMoved) {
    begin();
    EXPECT_FALSE(port_->exchange());
    auto program = host();
    EXPECT_TRUE(port_->exchange()) << "a host came";
    EXPECT_FALSE(port_->exchange());
    ASSERT_TRUE(program->send(reportOf(1)));
    EXPECT_TRUE(port_->exchange());
    EXPECT_FALSE(port_->exchange());
    EXPECT_EQ(amplifierSends(reportOf(2)), 64);
    EXPECT_TRUE(port_->exchange());
    EXPECT_FALSE(port_->exchange());
    program.reset();
    EXPECT_TRUE(port_->exchange()) << "the host went";
}

TEST_F(UsbPortTest, WithoutAHostTheDeviceIsBusy) {
    begin();
    port_->exchange();
    EXPECT_EQ(amplifierSends(reportOf(1)), -1);
    EXPECT_EQ(errno, EAGAIN);
    const auto program = host();
    port_->exchange();
    EXPECT_EQ(amplifierSends(reportOf(1)), 64);
}

TEST_F(UsbPortTest, AHostThatDoesNotReadMakesTheDeviceBusyAndLosesNothing) {
    begin();
    const auto program = host();
    port_->exchange();
    int sent = 0;
    while (sent < 10000 && amplifierSends(reportOf(static_cast<std::uint8_t>(sent))) == 64) {
        ++sent;
        port_->exchange();
    }
    ASSERT_LT(sent, 10000);
    EXPECT_EQ(errno, EAGAIN);
    Report got{};
    for (int n = 0; n < sent; ++n) {
        ASSERT_TRUE(program->receive(got, 0ms)) << n;
        EXPECT_EQ(got, reportOf(static_cast<std::uint8_t>(n)));
        port_->exchange();
    }
    EXPECT_EQ(amplifierSends(reportOf(1)), 64);
}

TEST_F(UsbPortTest, PullingTheCableTakesTheDeviceAndTheHostsSocketAway) {
    begin();
    const auto program = host();
    port_->exchange();
    port_->unplug();
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(devicePath())));
    EXPECT_EQ(amplifierSends(reportOf(1)), -1);
    Report got{};
    EXPECT_THROW(program->receive(got, 0ms), tvk::client::ClientError);
}

TEST_F(UsbPortTest, PluggedAgainItCarriesReportsAgain) {
    begin();
    port_->unplug();
    port_->plug();
    close(device_);
    openDevice();
    const auto program = host();
    port_->exchange();
    EXPECT_EQ(amplifierSends(reportOf(3)), 64);
    port_->exchange();
    Report got{};
    EXPECT_TRUE(program->receive(got, 0ms));
    EXPECT_EQ(got, reportOf(3));
}

TEST_F(UsbPortTest, ASecondHostIsTurnedAwayAndANextOneIsNot) {
    begin();
    auto first = host();
    port_->exchange();
    const auto second = host();
    port_->exchange();
    Report got{};
    EXPECT_THROW(second->receive(got, 0ms), tvk::client::ClientError);
    first.reset();
    const auto third = host();
    port_->exchange();
    ASSERT_TRUE(third->send(reportOf(4)));
    port_->exchange();
    EXPECT_EQ(amplifierReads(got), 64);
    EXPECT_EQ(got, reportOf(4));
}

TEST_F(UsbPortTest, WhatASimulatedHostIsSentIsThrownAway) {
    begin(true);
    for (int n = 0; n < 200; ++n) {
        ASSERT_EQ(amplifierSends(reportOf(1)), 64) << n;
        port_->exchange();
    }
    port_->send(reportOf(9));
    Report got{};
    EXPECT_EQ(amplifierReads(got), 64);
    EXPECT_EQ(got, reportOf(9));
}
