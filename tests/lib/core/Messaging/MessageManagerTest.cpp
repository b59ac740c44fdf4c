// The manager between a fake sender and a fake receiver; its messages are strings, which are their own bytes.
#include <deque>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "core/Messaging/MessageManager.h"
#include "support/LogRecorder.h"

using tvk::Bytes;
using tvk::CompositionMode;
using tvk::OwnedBytes;
using tvk::TransportStatus;

namespace {

class FakeSender : public tvk::ISender {
public:
    TransportStatus send(Bytes* frame) override {
        if (status == TransportStatus::Success) sent.push_back(*frame);
        frame->insert(frame->begin(), 0);  // as a sender of reports does
        return status;
    }
    std::size_t getMaxFrameSize() const override { return 63; }

    TransportStatus status = TransportStatus::Success;
    std::vector<Bytes> sent;
};

class FakeReceiver : public tvk::IReceiver {
public:
    TransportStatus receive() override { return TransportStatus::NothingDone; }
    OwnedBytes pop() override {
        if (frames.empty()) return nullptr;
        auto frame = std::make_unique<Bytes>(frames.front());
        frames.pop_front();
        return frame;
    }
    void flush() override {}
    std::size_t getMaxFrameSize() const override { return 63; }

    std::deque<Bytes> frames;
};

// "" encodes to no bytes, "null" to nothing, "huge" to too much.
class TextEncoder : public tvk::IEncoder<std::string> {
public:
    OwnedBytes encode(const std::string* message) override {
        if (*message == "null") return nullptr;
        if (*message == "huge") return std::make_unique<Bytes>(1001);
        return std::make_unique<Bytes>(message->begin(), message->end());
    }
};

class TextDecoder : public tvk::IDecoder<std::string> {
public:
    std::unique_ptr<std::string> decode(const Bytes* bytes) override {
        std::string text(bytes->begin(), bytes->end());
        return text == "bad" ? nullptr : std::make_unique<std::string>(text);
    }
};

class MessageManagerTest : public testing::Test {
protected:
    void receive(const std::string& text) {
        const Bytes message(text.begin(), text.end());
        Bytes frame;
        for (std::size_t i = 0; !(frame = framer.getFrame(message, i)).empty(); ++i) {
            receiver.frames.push_back(frame);
            manager.receiveFrame();
        }
    }
    void fillSendQueue() {
        for (int i = 0; i < 15; ++i)
            EXPECT_TRUE(manager.queueMessage("message"));
    }

    LogRecorder log;
    FakeSender sender;
    FakeReceiver receiver;
    TextEncoder encoder;
    TextDecoder decoder;
    tvk::MessageFramer framer{63, 1000, CompositionMode::Framed};
    tvk::MessageComposer composer{63, 1000, CompositionMode::Framed};
    tvk::MessageManager<std::string> manager{encoder, decoder, framer, composer, sender, receiver, 15};
};

}  // namespace

TEST_F(MessageManagerTest, SendsFrameByFrameAndMessageByMessage) {
    const std::string text(61, 'a');
    EXPECT_TRUE(manager.queueMessage(text));
    EXPECT_TRUE(manager.queueMessage("b"));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(manager.sendNextFrame(), TransportStatus::Success);
    EXPECT_EQ(manager.sendNextFrame(), TransportStatus::NothingDone);
    const Bytes bytes(text.begin(), text.end());
    EXPECT_EQ(sender.sent, (std::vector<Bytes>{framer.getFrame(bytes, 0), framer.getFrame(bytes, 1),
                                               framer.getFrame({'b'}, 0)}));
}

TEST_F(MessageManagerTest, NothingToSendIsNothingDone) {
    EXPECT_EQ(manager.sendNextFrame(), TransportStatus::NothingDone);
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(MessageManagerTest, AFrameThatWasNotSentIsTriedAgain) {
    const std::string text(100, 'x');
    manager.queueMessage(text);
    EXPECT_EQ(manager.sendNextFrame(), TransportStatus::Success);
    for (const TransportStatus status :
         {TransportStatus::NothingDone, TransportStatus::Error, TransportStatus::DeviceGone}) {
        sender.status = status;
        EXPECT_EQ(manager.sendNextFrame(), status);
    }
    sender.status = TransportStatus::Success;
    EXPECT_EQ(manager.sendNextFrame(), TransportStatus::Success);
    ASSERT_EQ(sender.sent.size(), 2u);
    EXPECT_EQ(sender.sent[1], framer.getFrame(Bytes(text.begin(), text.end()), 1));
}

TEST_F(MessageManagerTest, TheSixteenthWaitingMessageIsRefused) {
    fillSendQueue();
    EXPECT_TRUE(manager.isSendQueueFull());
    EXPECT_FALSE(manager.queueMessage("one more"));
    EXPECT_TRUE(log.has("Warn Tried to send a message while queue is full."));
    manager.sendNextFrame();
    EXPECT_FALSE(manager.isSendQueueFull());
    EXPECT_TRUE(manager.queueMessage("one more"));
}

TEST_F(MessageManagerTest, WhatDoesNotEncodeIsNotQueued) {
    EXPECT_FALSE(manager.queueMessage("null"));
    EXPECT_FALSE(manager.queueMessage(""));
    EXPECT_EQ(log.count("Error Message failed to encode properly."), 2);
    EXPECT_EQ(manager.sendNextFrame(), TransportStatus::NothingDone);
}

TEST_F(MessageManagerTest, AnOversizedMessageIsDroppedAndTheNextIsSent) {
    manager.queueMessage("huge");
    manager.queueMessage("good");
    EXPECT_EQ(manager.sendNextFrame(), TransportStatus::NothingDone);
    EXPECT_TRUE(log.has("Error Tried to send an under or oversized message."));
    EXPECT_EQ(manager.sendNextFrame(), TransportStatus::Success);
}

TEST_F(MessageManagerTest, TheTakenCountMovesWhenThereIsRoomAgain) {
    fillSendQueue();
    const unsigned before = manager.getTakenCount();
    sender.status = TransportStatus::NothingDone;
    manager.sendNextFrame();
    EXPECT_EQ(manager.getTakenCount(), before + 1);
    manager.sendNextFrame();
    EXPECT_EQ(manager.getTakenCount(), before + 1);
    manager.reset();
    EXPECT_EQ(manager.getTakenCount(), before + 15);
}

TEST_F(MessageManagerTest, ReceivedFramesBecomeMessages) {
    receive(std::string(200, 'r'));
    receive("second");
    ASSERT_TRUE(manager.messageWaiting());
    EXPECT_EQ(*manager.retrieveMessage(), std::string(200, 'r'));
    EXPECT_EQ(*manager.retrieveMessage(), "second");
    EXPECT_FALSE(manager.messageWaiting());
}

TEST_F(MessageManagerTest, NoFrameIsNothing) {
    manager.receiveFrame();
    EXPECT_FALSE(manager.messageWaiting());
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(MessageManagerTest, TheSixteenthReceivedMessageIsLost) {
    for (int i = 0; i < 15; ++i)
        receive(std::to_string(i));
    EXPECT_TRUE(manager.isReceiveQueueFull());
    EXPECT_TRUE(log.lines().empty());
    receive("lost");
    EXPECT_TRUE(log.has("Error Tried to push message into full queue."));
    for (int i = 0; i < 15; ++i)
        EXPECT_EQ(*manager.retrieveMessage(), std::to_string(i));
    EXPECT_FALSE(manager.messageWaiting());
}

TEST_F(MessageManagerTest, WhatDoesNotDecodeIsAnErrorAndNoMessage) {
    receive("bad");
    EXPECT_TRUE(log.has("Error Message failed to decode properly."));
    EXPECT_FALSE(manager.messageWaiting());
    receive("good");
    EXPECT_EQ(*manager.retrieveMessage(), "good");
}

TEST_F(MessageManagerTest, RetrievingWhereNothingWaitsIsMisuse) {
    EXPECT_EQ(manager.retrieveMessage(), nullptr);
    EXPECT_TRUE(log.has("Error Tried to retrieve a message while msgWaiting == false."));
}

TEST_F(MessageManagerTest, ResetDropsBothQueuesAndWhatIsInProgress) {
    manager.queueMessage(std::string(100, 'x'));
    manager.queueMessage("y");
    manager.sendNextFrame();
    receive("waiting");
    receiver.frames.push_back(framer.getFrame(Bytes(100, 'p'), 0));
    manager.receiveFrame();

    manager.reset();
    EXPECT_EQ(manager.sendNextFrame(), TransportStatus::NothingDone);
    EXPECT_FALSE(manager.messageWaiting());
    // A start frame is the first of a new message again.
    receive(std::string(61, 'n'));
    EXPECT_EQ(*manager.retrieveMessage(), std::string(61, 'n'));
    manager.queueMessage(std::string(61, 'm'));
    sender.sent.clear();
    manager.sendNextFrame();
    EXPECT_EQ(sender.sent.at(0).front(), 0x33);
}

TEST(MessageRing, HoldsOneLessThanItsSlots) {
    tvk::MessageRing<int> ring(301);
    for (int i = 0; i < 300; ++i)
        ASSERT_TRUE(ring.push(i));
    EXPECT_FALSE(ring.push(300));
    EXPECT_EQ(ring.size(), 300u);
    int item = -1;
    for (int i = 0; i < 300; ++i) {
        ASSERT_TRUE(ring.pop(item));
        ASSERT_EQ(item, i);
    }
    EXPECT_FALSE(ring.pop(item));
    for (int i = 0; i < 1000; ++i) {
        ASSERT_TRUE(ring.push(i));
        ASSERT_TRUE(ring.pop(item));
        ASSERT_EQ(item, i);
    }
    ring.push(1);
    ring.clear();
    EXPECT_EQ(ring.size(), 0u);
}
