#include <gtest/gtest.h>
#include <numeric>
#include <string>
#include <thread>
#include <vector>

#include "core/comm/UartComm.h"
#include "support/HeldClock.h"
#include "support/LogRecorder.h"
#include "support/PtyPair.h"
#include "support/TemporaryFolder.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes allBytes() {
    Bytes bytes(256);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    return bytes;
}

Bytes readAll(UartComm& uart) {
    Bytes bytes;
    std::uint8_t byte = 0;
    while (uart.bytesWaiting() > 0 && uart.readByte(byte))
        bytes.push_back(byte);
    return bytes;
}

TEST(UartCommTest, SetsThePortToRawBytesAt115200Baud) {
    const PtyPair pty;
    const UartComm uart(pty.path());
    const termios settings = pty.settings();
    EXPECT_EQ(settings.c_cflag & ~static_cast<tcflag_t>(CBAUD), 0x18B2u & ~static_cast<tcflag_t>(CBAUD));
    EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B115200));
    EXPECT_EQ(cfgetispeed(&settings), static_cast<speed_t>(B115200));
    EXPECT_EQ(settings.c_iflag, 4u);
    EXPECT_EQ(settings.c_oflag, 0u);
    EXPECT_EQ(settings.c_lflag, 0u);
    EXPECT_EQ(settings.c_cc[VTIME], 2);
    EXPECT_EQ(settings.c_cc[VMIN], 1);
}

TEST(UartCommTest, EveryByteArrivesAsItWasSent) {
    PtyPair pty;
    UartComm uart(pty.path());
    ASSERT_TRUE(uart.isOpen());
    EXPECT_EQ(uart.bytesWaiting(), 0);
    pty.deliver(allBytes());
    EXPECT_EQ(uart.bytesWaiting(), 256);
    EXPECT_EQ(readAll(uart), allBytes());
}

TEST(UartCommTest, EveryByteIsWrittenAsItIs) {
    PtyPair pty;
    UartComm uart(pty.path());
    EXPECT_TRUE(uart.write(allBytes()));
    const std::string received = pty.receive(256);
    EXPECT_EQ(Bytes(received.begin(), received.end()), allBytes());
}

TEST(UartCommTest, WhatCameBeforeTheOpeningIsDiscarded) {
    PtyPair pty;
    pty.deliver(std::string("old"));
    UartComm uart(pty.path());
    EXPECT_EQ(uart.bytesWaiting(), 0);
}

TEST(UartCommTest, WithoutBytesAReadReturnsAtOnce) {
    const PtyPair pty;
    UartComm uart(pty.path());
    std::uint8_t byte = 0;
    EXPECT_FALSE(uart.readByte(byte));
}

TEST(UartCommTest, WhatIsNoTerminalIsAnErrorAndStaysSilent) {
    const TemporaryFolder folder;
    for (const std::string& path :
         {folder.file("missing"), folder.path().string(), std::string("/dev/null")}) {
        LogRecorder log;
        UartComm uart(path);
        EXPECT_EQ(log.lines(), std::vector<std::string>{"Error uart init"});
        EXPECT_FALSE(uart.isOpen());
        EXPECT_EQ(uart.bytesWaiting(), 0);
        std::uint8_t byte = 0;
        EXPECT_FALSE(uart.readByte(byte));
        EXPECT_FALSE(uart.write(allBytes()));
        EXPECT_EQ(log.lines().size(), 1u);
    }
}

TEST(UartCommTest, AWriteThatFindsNoRoomEndsAfterAHundredTries) {
    PtyPair pty;
    UartComm uart(pty.path());
    LogRecorder log;
    HeldClock clock;
    while (uart.write(Bytes(128, 0xAA))) {
    }
    EXPECT_EQ(log.count("Error excessive uart iterations"), 1);
    EXPECT_EQ(log.startingWith("Warn uart write failed").size(), 10u)
        << "ten of a hundred in a tenth of a second";
    EXPECT_LE(clock.now(), std::chrono::milliseconds(100));
}

TEST(UartCommTest, AWriteGoesOnWhenThereIsRoomAgain) {
    // Makes room in the wait of the second failed try.
    class ReaderInTheWait : public tvk::Clock {
    public:
        explicit ReaderInTheWait(PtyPair& pty) : pty_(pty) { install(this); }
        ~ReaderInTheWait() override { install(nullptr); }
        std::chrono::nanoseconds now() override { return std::chrono::nanoseconds(0); }
        void sleepFor(std::chrono::nanoseconds) override {
            if (++waits_ >= 2) received += pty_.received();
        }
        int poll(pollfd*, nfds_t, std::chrono::milliseconds) override { return 0; }
        std::string received;

    private:
        PtyPair& pty_;
        int waits_ = 0;
    };
    PtyPair pty;
    UartComm uart(pty.path());
    LogRecorder log;
    ReaderInTheWait reader(pty);
    const Bytes large(20000, 0x55);
    EXPECT_TRUE(uart.write(large));
    EXPECT_GE(log.startingWith("Warn uart write failed").size(), 2u);
    reader.received += pty.receive(large.size() - reader.received.size());
    EXPECT_EQ(reader.received, std::string(20000, 'U'));
}

TEST(UartCommTest, APortThatHangsUpGivesNothing) {
    PtyPair pty;
    UartComm uart(pty.path());
    pty.hangUp();
    std::uint8_t byte = 0;
    EXPECT_EQ(uart.bytesWaiting(), 0);
    EXPECT_FALSE(uart.readByte(byte));
}

}  // namespace
