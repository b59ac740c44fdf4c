#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <numeric>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "core/Messaging/MessageComposer.h"
#include "core/Messaging/MessageFramer.h"
#include "support/LogRecorder.h"

using tvk::Bytes;
using tvk::CompositionMode;
using tvk::MessageComposer;
using tvk::MessageFramer;

namespace {

// A frame as the layout has it, with any claim about its payload, padded to a size.
Bytes frameOf(std::uint8_t tag, std::size_t claimedSize, const Bytes& payload, std::size_t paddedSize = 0) {
    Bytes frame{tag, static_cast<std::uint8_t>(claimedSize >> 8), static_cast<std::uint8_t>(claimedSize)};
    frame.insert(frame.end(), payload.begin(), payload.end());
    if (frame.size() < paddedSize) frame.resize(paddedSize, 0);
    return frame;
}

Bytes bytesOf(std::size_t size, std::uint8_t first = 1) {
    Bytes bytes(size);
    std::iota(bytes.begin(), bytes.end(), first);
    return bytes;
}

// The rules once more, without a text: nothing for a frame that ends no message.
class ReferenceComposer {
public:
    std::optional<Bytes> add(const Bytes& frame) {
        const std::optional<Bytes> before = std::exchange(open_, std::nullopt);
        if (frame.size() < 4 || frame.size() > 63) return std::nullopt;
        const std::size_t size = frame[1] * 256u + frame[2];
        if (size == 0 || size > 60 || size + 3 > frame.size()) return std::nullopt;
        Bytes whole = before.value_or(Bytes());
        whole.insert(whole.end(), frame.begin() + 3, frame.begin() + 3 + static_cast<std::ptrdiff_t>(size));
        if (whole.size() > 32768) return std::nullopt;
        if (frame[0] == '5') return whole;
        if ((frame[0] == '3' && !before) || (frame[0] == '4' && before)) open_ = whole;
        return std::nullopt;
    }

private:
    std::optional<Bytes> open_;
};

class MessageComposerTest : public testing::Test {
protected:
    bool add(std::uint8_t tag, const Bytes& payload) {
        return composer.addFrame(frameOf(tag, payload.size(), payload, 63));
    }
    // The next message goes through as if nothing had been.
    void expectReady() {
        const Bytes message = bytesOf(90, 7);
        EXPECT_FALSE(add(0x33, Bytes(message.begin(), message.begin() + 60)));
        EXPECT_TRUE(add(0x35, Bytes(message.begin() + 60, message.end())));
        expectMessage(message);
    }
    void expectMessage(const Bytes& expected) {
        ASSERT_TRUE(composer.messageWaiting());
        EXPECT_EQ(*composer.popMessage(), expected);
        EXPECT_FALSE(composer.messageWaiting());
    }
    void expectRefused(const Bytes& frame, const std::string& line) {
        log.clear();
        EXPECT_FALSE(composer.addFrame(frame)) << line;
        EXPECT_EQ(log.lines(), std::vector<std::string>{"Error " + line});
        EXPECT_FALSE(composer.messageWaiting());
        expectReady();
    }

    LogRecorder log;
    MessageComposer composer{63, 32768, CompositionMode::Framed};
};

constexpr const char* kMalformed = "Received a malformed or empty message.";
constexpr const char* kPayloadTooLarge = "Payload size too large. Returning false.";
constexpr const char* kMessageTooLarge = "Received message is too large. Returning false.";
constexpr const char* kPayloadZero = "Payload size is 0. Returning false.";
constexpr const char* kStartInside =
    "Received a start frame while already composing a message. This could mean that an end frame wasdropped. "
    "Returning false.";
constexpr const char* kContinueOutside =
    "Received a continue frame while not composing a message. This could mean that a start frame wasdropped. "
    "Returning false.";

}  // namespace

TEST_F(MessageComposerTest, AnEndFrameAloneIsAMessage) {
    EXPECT_TRUE(add(0x35, {1, 2, 3}));
    expectMessage({1, 2, 3});
}

TEST_F(MessageComposerTest, WhatLiesBehindThePayloadIsNotOfTheMessage) {
    Bytes frame = frameOf(0x35, 2, {8, 9}, 63);
    frame[5] = 0xEE;
    frame[62] = 0xEE;
    EXPECT_TRUE(composer.addFrame(frame));
    expectMessage({8, 9});
}

TEST_F(MessageComposerTest, AFrameNeedsNoPadding) {
    EXPECT_TRUE(composer.addFrame({0x35, 0, 1, 0xAA}));
    expectMessage({0xAA});
}

TEST_F(MessageComposerTest, FramesJoinInTheirOrder) {
    const Bytes message = bytesOf(150);
    EXPECT_FALSE(add(0x33, Bytes(message.begin(), message.begin() + 60)));
    EXPECT_FALSE(add(0x34, Bytes(message.begin() + 60, message.begin() + 120)));
    EXPECT_FALSE(composer.messageWaiting());
    EXPECT_TRUE(add(0x35, Bytes(message.begin() + 120, message.end())));
    expectMessage(message);
}

TEST_F(MessageComposerTest, FinishedMessagesWaitInTheirOrder) {
    add(0x35, {1});
    add(0x35, {2});
    EXPECT_EQ(*composer.popMessage(), Bytes{1});
    EXPECT_EQ(*composer.popMessage(), Bytes{2});
    EXPECT_EQ(composer.popMessage(), nullptr);
}

TEST_F(MessageComposerTest, FramesOfThreeBytesOrFewerAreMalformed) {
    expectRefused({}, kMalformed);
    expectRefused({0x35}, kMalformed);
    expectRefused({0x35, 0, 0}, kMalformed);
}

TEST_F(MessageComposerTest, FramesOverTheLargestAreRefused) {
    expectRefused(frameOf(0x35, 60, bytesOf(60), 64), "Frame too large. Frame size: 64, max frame size: 63");
}

TEST_F(MessageComposerTest, TagsOutsideTheThreeAreRefused) {
    for (int tag = 0; tag < 256; ++tag) {
        if (tag >= 0x33 && tag <= 0x35) continue;
        // Ten lines a second are written from one place.
        MessageComposer fresh(63, 32768, CompositionMode::Framed);
        log.clear();
        EXPECT_FALSE(fresh.addFrame(frameOf(static_cast<std::uint8_t>(tag), 1, {1}, 63)));
        EXPECT_TRUE(log.has("Error Received message's type is not valid. (type = " + std::to_string(tag) +
                            ", size = 63).\nReturning false."));
        EXPECT_TRUE(fresh.addFrame({0x35, 0, 1, 0xAA}));
    }
}

TEST_F(MessageComposerTest, PayloadsOverTheRoomOfAFrameAreRefused) {
    expectRefused(frameOf(0x35, 61, bytesOf(60)), kPayloadTooLarge);
    expectRefused(frameOf(0x33, 0x8000, bytesOf(60)), kPayloadTooLarge);
    expectRefused(frameOf(0x35, 0x8001, bytesOf(60)), kMessageTooLarge);
    expectRefused(frameOf(0x35, 0xFFFF, bytesOf(60)), kMessageTooLarge);
}

TEST_F(MessageComposerTest, AFrameShorterThanItsPayloadIsRefused) {
    expectRefused({0x35, 0, 2, 1}, kPayloadTooLarge);
    expectRefused({0x33, 0, 60, 1, 2, 3}, kPayloadTooLarge);
}

TEST_F(MessageComposerTest, APayloadOfNoBytesIsRefused) {
    expectRefused(frameOf(0x35, 0, {}, 63), kPayloadZero);
    expectRefused(frameOf(0x33, 0, {}, 63), kPayloadZero);
    expectRefused(frameOf(0x34, 0, {}, 63), kPayloadZero);
}

TEST_F(MessageComposerTest, AContinueFrameOutsideAMessageIsRefused) {
    expectRefused(frameOf(0x34, 60, bytesOf(60)), kContinueOutside);
}

TEST_F(MessageComposerTest, ALostEndFrameCostsTheNextStartFrameAndNoMore) {
    add(0x33, bytesOf(60));
    expectRefused(frameOf(0x33, 60, bytesOf(60)), kStartInside);
}

TEST_F(MessageComposerTest, EveryRefusalDropsWhatWasAssembled) {
    const std::vector<Bytes> hostile{
        {},
        frameOf(0x35, 1, {1}, 64),
        frameOf(0x36, 1, {1}, 63),
        frameOf(0x34, 61, bytesOf(60)),
        frameOf(0x34, 0, {}, 63),
        frameOf(0x33, 1, {1}, 63),
    };
    for (const Bytes& frame : hostile) {
        EXPECT_FALSE(add(0x33, bytesOf(60)));
        EXPECT_FALSE(composer.addFrame(frame));
        EXPECT_TRUE(add(0x35, {5}));
        expectMessage({5});
    }
}

TEST_F(MessageComposerTest, TheLargestMessagePassesAndOneByteMoreDoesNot) {
    const MessageFramer framer(63, 40000, CompositionMode::Framed);
    const Bytes largest = bytesOf(32768);
    for (std::size_t i = 0; i < 547; ++i)
        EXPECT_EQ(composer.addFrame(framer.getFrame(largest, i)), i == 546);
    expectMessage(largest);

    const Bytes tooLarge = bytesOf(32769);
    for (std::size_t i = 0; i < 546; ++i)
        EXPECT_FALSE(composer.addFrame(framer.getFrame(tooLarge, i)));
    expectRefused(framer.getFrame(tooLarge, 546), kMessageTooLarge);
}

TEST_F(MessageComposerTest, ResetDropsEverything) {
    add(0x35, {1});
    add(0x33, bytesOf(60));
    composer.reset();
    EXPECT_FALSE(composer.messageWaiting());
    expectReady();
}

TEST_F(MessageComposerTest, WhatTheFramerCutsComesBackWhole) {
    const MessageFramer framer(63, 32768, CompositionMode::Framed);
    for (const std::size_t size : {1u, 59u, 60u, 61u, 119u, 120u, 121u, 179u, 180u, 181u, 5000u}) {
        const Bytes message = bytesOf(size, 0xC0);
        Bytes frame;
        for (std::size_t i = 0; !(frame = framer.getFrame(message, i)).empty(); ++i)
            EXPECT_EQ(composer.addFrame(frame), (i + 1) * 60 >= size);
        expectMessage(message);
    }
}

// Frames that are right, wrong in a byte, cut and out of place, by the ten thousand.
TEST_F(MessageComposerTest, HostileFramesDoWhatTheRulesSayAndNeverStopTheNextGoodMessage) {
    const MessageFramer framer(63, 32768, CompositionMode::Framed);
    ReferenceComposer reference;
    std::mt19937 random(4);
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    int finished = 0;
    for (int round = 0; round < 20000; ++round) {
        Bytes frame = framer.getFrame(bytesOf(1 + below(300), static_cast<std::uint8_t>(round)), below(5));
        const std::size_t damage = below(6);
        if (damage == 0 && !frame.empty()) frame[below(frame.size())] = static_cast<std::uint8_t>(random());
        if (damage == 1) frame.resize(below(70), static_cast<std::uint8_t>(random()));
        if (damage == 2 && frame.size() > 2) frame[below(3)] ^= static_cast<std::uint8_t>(1u << below(8));

        const std::optional<Bytes> expected = reference.add(frame);
        ASSERT_EQ(composer.addFrame(frame), expected.has_value());
        if (expected) {
            ++finished;
            expectMessage(*expected);
        }
        if (round % 50 == 0) {
            composer.addFrame({0x34, 0, 0, 0});  // ends what may be in progress
            reference.add({0x34, 0, 0, 0});
            expectReady();
        }
    }
    EXPECT_GT(finished, 1000);
}

TEST(StreamingComposer, BytesInAnyPiecesBecomeMessages) {
    LogRecorder log;
    const MessageFramer framer(203, 200, CompositionMode::Streaming);
    const std::vector<Bytes> messages{{1}, bytesOf(200), bytesOf(7)};
    Bytes stream;
    for (const Bytes& message : messages) {
        const Bytes frame = framer.getFrame(message, 0);
        stream.insert(stream.end(), frame.begin(), frame.end());
    }
    for (const std::size_t piece : {1u, 2u, 3u, 5u, 64u, 1000u}) {
        MessageComposer composer(203, 200, CompositionMode::Streaming);
        for (std::size_t at = 0; at < stream.size(); at += piece) {
            const std::size_t end = std::min(at + piece, stream.size());
            composer.addFrame(Bytes(stream.begin() + static_cast<std::ptrdiff_t>(at),
                                    stream.begin() + static_cast<std::ptrdiff_t>(end)));
        }
        for (const Bytes& message : messages) {
            ASSERT_TRUE(composer.messageWaiting());
            EXPECT_EQ(*composer.popMessage(), message);
        }
        EXPECT_FALSE(composer.messageWaiting());
    }
    EXPECT_TRUE(log.lines().empty());
}

TEST(StreamingComposer, APieceSaysWhetherItFinishedAMessage) {
    MessageComposer composer(103, 100, CompositionMode::Streaming);
    EXPECT_FALSE(composer.addFrame({0x35, 0, 2, 1}));
    EXPECT_TRUE(composer.addFrame({2}));
    EXPECT_TRUE(composer.addFrame({0x35, 0, 1, 1, 0x35}));
    EXPECT_FALSE(composer.addFrame({0, 1}));
}

TEST(StreamingComposer, EveryRefusalLeavesItReadyForTheNextMessage) {
    LogRecorder log;
    MessageComposer composer(103, 50, CompositionMode::Streaming);
    const auto expectRefused = [&](const Bytes& bytes, const std::string& line) {
        log.clear();
        EXPECT_FALSE(composer.addFrame(bytes));
        EXPECT_EQ(log.lines(), std::vector<std::string>{"Error " + line});
        EXPECT_TRUE(composer.addFrame({0x35, 0, 1, 0xAA}));
        EXPECT_EQ(*composer.popMessage(), Bytes{0xAA});
    };
    expectRefused({0x33}, "Wrong type received. Type: 51");
    expectRefused({0x35, 0, 101}, "Payload size is too large.");
    expectRefused({0x35, 0, 51}, "Payload size is too large.");
    expectRefused({0x35, 0, 0}, "Payload size is 0. Returning false.");
}

TEST(StreamingComposer, APositionPastSixteenBitsEndsTheMessage) {
    LogRecorder log;
    MessageComposer composer(65538, 65535, CompositionMode::Streaming);
    Bytes bytes = frameOf(0x35, 65535, bytesOf(65535));
    bytes.resize(65536);
    EXPECT_FALSE(composer.addFrame(bytes));
    EXPECT_TRUE(
        log.has("Error Unexpected situation during composition. compositionIndex: 65535, data size: 65536, "
                "byte: " +
                std::string("fd")));
    EXPECT_TRUE(composer.addFrame({0x35, 0, 1, 0xAA}));
}

TEST(MessageComposerConstruction, APayloadOverSixteenBitsIsAnError) {
    LogRecorder log;
    const MessageComposer composer(65539, 100, CompositionMode::Framed);
    EXPECT_TRUE(log.has("Error Max payload size too large to fit into 16-bit payloadSize field"));
}

TEST(MessageComposerConstruction, AnUnknownModeComposesNothing) {
    LogRecorder log;
    MessageComposer composer(63, 100, static_cast<CompositionMode>(2));
    EXPECT_FALSE(composer.addFrame({0x35, 0, 1, 1}));
    EXPECT_TRUE(log.has("Error Composer is in unexpected composition mode."));
}
