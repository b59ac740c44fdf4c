// The gadget device, its sender and its receiver on a raw pseudo-terminal, which stands for the driver's
// device.
#include <chrono>
#include <cstdint>
#include <gtest/gtest.h>
#include <numeric>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>

#include "core/Messaging/HidGadgetDevice.h"
#include "core/Messaging/HidGadgetReceiver.h"
#include "core/Messaging/HidGadgetSender.h"
#include "support/HandClock.h"
#include "support/LogRecorder.h"
#include "support/PtyPair.h"
#include "support/TemporaryFolder.h"

using tvk::Bytes;
using tvk::HidGadgetDevice;
using tvk::HidGadgetReceiver;
using tvk::HidGadgetSender;
using tvk::TransportStatus;

namespace {

Bytes report(std::uint8_t first) {
    Bytes bytes(64);
    std::iota(bytes.begin(), bytes.end(), first);
    return bytes;
}

class HidGadgetTest : public testing::Test {
protected:
    void open() { ASSERT_TRUE(device.open(pty.path())); }
    // Errors 1 and 2 of a flush need a system that fails.
    class FailingPoll : public HandClock {
    public:
        int poll(pollfd* descriptors, nfds_t, std::chrono::milliseconds) override {
            descriptors->revents = revents;
            return result;
        }
        int result = -1;
        short revents = 0;
    };

    LogRecorder log;
    HandClock clock;
    PtyPair pty;
    HidGadgetDevice device;
    HidGadgetSender sender{device, 64};
    HidGadgetReceiver receiver{device, 64, std::chrono::milliseconds(0)};
};

}  // namespace

TEST_F(HidGadgetTest, OpensOnceAndCloses) {
    EXPECT_FALSE(device.isOpen());
    EXPECT_EQ(device.descriptor(), -1);
    open();
    EXPECT_TRUE(device.isOpen());
    EXPECT_TRUE(log.has("HIDDevice: Opened device."));
    EXPECT_FALSE(device.open(pty.path()));
    EXPECT_TRUE(device.isOpen());
    device.close();
    EXPECT_FALSE(device.isOpen());
    EXPECT_EQ(log.count("HIDDevice: Device closed."), 1);
    device.close();
    EXPECT_EQ(log.count("HIDDevice: Device closed."), 1);
    EXPECT_TRUE(device.open(pty.path()));
}

TEST_F(HidGadgetTest, TheDestructorCloses) {
    {
        HidGadgetDevice other;
        ASSERT_TRUE(other.open(pty.path()));
    }
    EXPECT_EQ(log.count("HIDDevice: Device closed."), 1);
}

TEST_F(HidGadgetTest, AFailureToOpenIsWarnedOfOnceForEachClosedSpell) {
    const TemporaryFolder folder;
    for (int i = 0; i < 5; ++i)
        EXPECT_FALSE(device.open(folder.file("hidg0")));
    EXPECT_EQ(log.count("Warn Failed to open HID device."), 1);
    open();
    device.close();
    for (int i = 0; i < 5; ++i)
        EXPECT_FALSE(device.open(folder.file("hidg0")));
    EXPECT_EQ(log.count("Warn Failed to open HID device."), 2);
}

// Only the leader of a session without a terminal could get one: a process of its own is one.
TEST_F(HidGadgetTest, TheDeviceNeverBecomesTheControllingTerminal) {
    const pid_t child = ::fork();
    if (child == 0) {
        const bool isLeader = ::setsid() > 0 && device.open(pty.path());
        const bool hasTerminal = ::open("/dev/tty", O_RDWR) >= 0;
        ::_exit(isLeader && !hasTerminal ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST_F(HidGadgetTest, AFrameGoesAsOneReportBehindAZeroId) {
    open();
    Bytes frame{0x35, 0, 2, 0xAA, 0xBB};
    EXPECT_EQ(sender.send(&frame), TransportStatus::Success);
    Bytes expected{0, 0x35, 0, 2, 0xAA, 0xBB};
    expected.resize(64, 0);
    EXPECT_EQ(frame, expected);
    EXPECT_EQ(pty.receive(64), std::string(expected.begin(), expected.end()));
}

TEST_F(HidGadgetTest, AFrameOf63BytesFillsTheReportAndMoreIsCut) {
    open();
    Bytes full = report(1);
    full.pop_back();
    EXPECT_EQ(sender.send(&full), TransportStatus::Success);
    const std::string got = pty.receive(64);
    EXPECT_EQ(got[0], 0);
    EXPECT_EQ(got[63], 63);
    Bytes tooLong(70, 9);
    EXPECT_EQ(sender.send(&tooLong), TransportStatus::Success);
    EXPECT_EQ(tooLong.size(), 64u);
}

TEST_F(HidGadgetTest, BothEndsHave63BytesForAFrame) {
    EXPECT_EQ(sender.getMaxFrameSize(), 63u);
    EXPECT_EQ(receiver.getMaxFrameSize(), 63u);
}

TEST_F(HidGadgetTest, ANullFrameIsAnError) {
    open();
    EXPECT_EQ(sender.send(nullptr), TransportStatus::Error);
    EXPECT_TRUE(log.has("Warn Tried to send a nullptr message. Returning error status."));
}

TEST_F(HidGadgetTest, AWriteThatWouldBlockIsNothingDone) {
    open();
    Bytes frame{0x35, 0, 1, 1};
    const int slave = ::open(pty.path().c_str(), O_RDWR | O_NOCTTY);
    ::tcflow(slave, TCOOFF);  // a host that is not there
    TransportStatus status = TransportStatus::Success;
    for (int i = 0; i < 10000 && status == TransportStatus::Success; ++i)
        status = sender.send(&frame);
    EXPECT_EQ(status, TransportStatus::NothingDone);
    ::tcflow(slave, TCOON);
    ::close(slave);
    EXPECT_EQ(sender.send(&frame), TransportStatus::Success);
}

TEST_F(HidGadgetTest, AClosedDeviceIsGoneForTheSenderAndSilentForTheReceiver) {
    Bytes frame{0x35, 0, 1, 1};
    EXPECT_EQ(sender.send(&frame), TransportStatus::DeviceGone);
    EXPECT_EQ(receiver.receive(), TransportStatus::NothingDone);
}

TEST_F(HidGadgetTest, AFailedWriteIsAnError) {
    open();
    pty.hangUp();
    Bytes frame{0x35, 0, 1, 1};
    EXPECT_EQ(sender.send(&frame), TransportStatus::Error);  // EIO
}

TEST_F(HidGadgetTest, APartialWriteIsAnError) {
    // A pipe takes what fits of a large write; nothing else here writes partly.
    HidGadgetSender large(device, 1 << 20);
    const TemporaryFolder folder;
    ASSERT_EQ(::mkfifo(folder.file("fifo").c_str(), 0600), 0);
    ASSERT_TRUE(device.open(folder.file("fifo")));
    Bytes frame{1};
    EXPECT_EQ(large.send(&frame), TransportStatus::Error);
}

TEST_F(HidGadgetTest, NothingToReadIsNothingDone) {
    open();
    EXPECT_EQ(receiver.receive(), TransportStatus::NothingDone);
    EXPECT_EQ(receiver.pop(), nullptr);
}

TEST_F(HidGadgetTest, InputIsAReportOrALostDevice) {
    open();
    EXPECT_FALSE(receiver.hasInput());
    pty.deliver(report(1));
    EXPECT_TRUE(receiver.hasInput());
    EXPECT_EQ(receiver.receive(), TransportStatus::Success);
    EXPECT_FALSE(receiver.hasInput());
    pty.hangUp();
    EXPECT_TRUE(receiver.hasInput());
}

TEST_F(HidGadgetTest, AReportIsAFrameWithoutItsLastByte) {
    open();
    pty.deliver(report(100));
    EXPECT_EQ(receiver.receive(), TransportStatus::Success);
    Bytes expected = report(100);
    expected.pop_back();
    EXPECT_EQ(*receiver.pop(), expected);
    EXPECT_EQ(receiver.pop(), nullptr);
}

TEST_F(HidGadgetTest, ReportsWaitInTheirOrder) {
    open();
    for (std::uint8_t i = 0; i < 20; ++i)
        pty.deliver(report(i));
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(receiver.receive(), TransportStatus::Success);
    EXPECT_EQ(receiver.receive(), TransportStatus::NothingDone);
    for (std::uint8_t i = 0; i < 20; ++i)
        EXPECT_EQ(receiver.pop()->front(), i);
}

TEST_F(HidGadgetTest, The26thWaitingFrameIsLostAndTheEarlierStay) {
    open();
    for (std::uint8_t i = 0; i < 27; ++i)
        pty.deliver(report(i));
    for (int i = 0; i < 25; ++i)
        EXPECT_EQ(receiver.receive(), TransportStatus::Success);
    EXPECT_TRUE(log.startingWith("Warn").empty());
    EXPECT_EQ(receiver.receive(), TransportStatus::Success);
    EXPECT_EQ(log.count("Warn Tried to queue a frame when the queue is full."), 1);
    for (std::uint8_t i = 0; i < 25; ++i)
        EXPECT_EQ(receiver.pop()->front(), i);
    EXPECT_EQ(receiver.pop(), nullptr);
    EXPECT_EQ(receiver.receive(), TransportStatus::Success);
    EXPECT_EQ(receiver.pop()->front(), 26);
}

TEST_F(HidGadgetTest, AFarEndThatWentAwayIsDeviceGone) {
    open();
    pty.hangUp();
    EXPECT_EQ(receiver.receive(), TransportStatus::DeviceGone);
}

TEST_F(HidGadgetTest, AReadOfNoBytesIsDeviceGone) {
    const TemporaryFolder folder;
    ::close(::creat(folder.file("empty").c_str(), 0600));
    ASSERT_TRUE(device.open(folder.file("empty")));
    EXPECT_EQ(receiver.receive(), TransportStatus::DeviceGone);
}

TEST_F(HidGadgetTest, AFailedPollIsAnError) {
    open();
    FailingPoll failing;
    EXPECT_EQ(receiver.receive(), TransportStatus::Error);
    failing.result = 1;
    for (const short gone : {POLLERR, POLLHUP, POLLNVAL}) {
        failing.revents = static_cast<short>(gone | POLLIN);
        EXPECT_EQ(receiver.receive(), TransportStatus::DeviceGone);
    }
}

TEST_F(HidGadgetTest, APollThatPromisedTooMuchIsNothingDone) {
    open();
    FailingPoll promising;
    promising.result = 1;
    promising.revents = POLLIN;
    EXPECT_EQ(receiver.receive(), TransportStatus::NothingDone);  // EAGAIN
}

TEST_F(HidGadgetTest, ADescriptorThatIsNotOneIsDeviceGone) {
    FailingPoll promising;
    promising.result = 1;
    promising.revents = POLLIN;
    EXPECT_EQ(receiver.receive(), TransportStatus::DeviceGone);  // EBADF
}

TEST_F(HidGadgetTest, FlushThrowsAwayWhatTheLinkHolds) {
    open();
    for (std::uint8_t i = 0; i < 30; ++i)
        pty.deliver(report(i));
    receiver.flush();
    EXPECT_EQ(receiver.receive(), TransportStatus::NothingDone);
    EXPECT_TRUE(log.startingWith("Error").empty());
}

TEST_F(HidGadgetTest, FlushSaysWhatFailed) {
    open();
    FailingPoll failing;
    receiver.flush();
    EXPECT_TRUE(log.has("Error Error 1 while polling device."));
    failing.result = 1;
    failing.revents = POLLERR;
    receiver.flush();
    EXPECT_TRUE(log.has("Error Error 2 while polling device."));
    failing.revents = POLLIN;
    receiver.flush();  // EAGAIN: there is nothing
    EXPECT_FALSE(log.has("Error Error while reading device."));
    device.close();
    receiver.flush();  // EBADF
    EXPECT_TRUE(log.has("Error Error while reading device."));
}
