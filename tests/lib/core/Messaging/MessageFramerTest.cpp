#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>

#include "core/Messaging/MessageFramer.h"
#include "support/LogRecorder.h"

using tvk::Bytes;
using tvk::CompositionMode;
using tvk::MessageFramer;

namespace {

Bytes countingBytes(std::size_t size) {
    Bytes bytes(size);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{1});
    return bytes;
}

class MessageFramerTest : public testing::Test {
protected:
    LogRecorder log;
    MessageFramer framer{63, 32768, CompositionMode::Framed};
};

}  // namespace

TEST_F(MessageFramerTest, ShortMessagesGoAsOneEndFrame) {
    EXPECT_EQ(framer.getFrame({0xAB}, 0), (Bytes{0x35, 0x00, 0x01, 0xAB}));
    EXPECT_EQ(framer.getFrame({1, 2, 3}, 0), (Bytes{0x35, 0x00, 0x03, 1, 2, 3}));
}

TEST_F(MessageFramerTest, SixtyBytesFillOneEndFrame) {
    const Bytes message = countingBytes(60);
    Bytes expected{0x35, 0x00, 0x3C};
    expected.insert(expected.end(), message.begin(), message.end());
    EXPECT_EQ(framer.getFrame(message, 0), expected);
    EXPECT_TRUE(framer.getFrame(message, 1).empty());
}

TEST_F(MessageFramerTest, SixtyOneBytesAreAStartFrameAndAnEndFrameOfOne) {
    const Bytes message = countingBytes(61);
    Bytes start{0x33, 0x00, 0x3C};
    start.insert(start.end(), message.begin(), message.begin() + 60);
    EXPECT_EQ(framer.getFrame(message, 0), start);
    EXPECT_EQ(framer.getFrame(message, 1), (Bytes{0x35, 0x00, 0x01, 61}));
    EXPECT_TRUE(framer.getFrame(message, 2).empty());
}

TEST_F(MessageFramerTest, ThreeFramesAreStartContinueEnd) {
    const Bytes message = countingBytes(150);
    EXPECT_EQ(framer.getFrame(message, 0).front(), 0x33);
    EXPECT_EQ(framer.getFrame(message, 1).front(), 0x34);
    EXPECT_EQ(framer.getFrame(message, 1)[3], 61);
    const Bytes end = framer.getFrame(message, 2);
    EXPECT_EQ(Bytes(end.begin(), end.begin() + 4), (Bytes{0x35, 0x00, 30, 121}));
    EXPECT_EQ(end.size(), 33u);
}

TEST_F(MessageFramerTest, TheLargestMessageTakes547Frames) {
    const Bytes message = countingBytes(32768);
    EXPECT_EQ(framer.getFrame(message, 545).front(), 0x34);
    EXPECT_EQ(framer.getFrame(message, 546).front(), 0x35);
    EXPECT_EQ(framer.getFrame(message, 546).size(), 3u + 32768 - 546 * 60);
    EXPECT_TRUE(framer.getFrame(message, 547).empty());
}

TEST_F(MessageFramerTest, SizesOver255StandHighByteFirst) {
    const MessageFramer wide(1003, 32768, CompositionMode::Framed);
    const Bytes frame = wide.getFrame(countingBytes(0x0234), 0);
    EXPECT_EQ(Bytes(frame.begin(), frame.begin() + 3), (Bytes{0x35, 0x02, 0x34}));
}

TEST_F(MessageFramerTest, AnIndexPastTheEndGivesAnEmptyFrame) {
    EXPECT_TRUE(framer.getFrame({1}, 1).empty());
    EXPECT_TRUE(framer.getFrame({1}, std::numeric_limits<std::size_t>::max()).empty());
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(MessageFramerTest, AMessageWithoutBytesHasNoFrame) {
    EXPECT_TRUE(framer.getFrame({}, 0).empty());
}

TEST_F(MessageFramerTest, ATooLargeMessageIsAnErrorAndAnEmptyFrame) {
    EXPECT_TRUE(framer.getFrame(countingBytes(32769), 0).empty());
    EXPECT_TRUE(log.has("Error Tried to get frame from a too-large message."));
}

TEST_F(MessageFramerTest, APayloadOverSixteenBitsIsAnErrorAtConstruction) {
    const MessageFramer largest(65538, 100000, CompositionMode::Framed);
    EXPECT_TRUE(log.lines().empty());
    const MessageFramer tooLarge(65539, 100000, CompositionMode::Framed);
    EXPECT_TRUE(log.has("Error Max payload size too large to fit into 16-bit payloadSize field"));
    // What the size bytes tell is still true.
    EXPECT_EQ(tooLarge.getFrame(countingBytes(70000), 0).size(), 65538u);
}

TEST_F(MessageFramerTest, StreamingFramesMustHoldTheLargestMessage) {
    const MessageFramer equal(100, 100, CompositionMode::Streaming);
    EXPECT_TRUE(log.lines().empty());
    const MessageFramer smaller(99, 100, CompositionMode::Streaming);
    EXPECT_TRUE(log.has(
        "Error Composer is in streaming mode, but max frame size is smaller than max message size. This is "
        "illogical: see MessageComposer::CompositionMode."));
}

TEST_F(MessageFramerTest, FramesWithoutRoomForAPayloadAreEmpty) {
    for (const std::size_t size : {0u, 2u, 3u}) {
        const MessageFramer none(size, 100, CompositionMode::Framed);
        EXPECT_TRUE(none.getFrame({1, 2}, 0).empty());
    }
}
