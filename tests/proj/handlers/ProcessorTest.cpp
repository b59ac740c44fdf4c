// What happens to a message before it is carried out: connection check, batches, unknown types.
#include "Conversation.h"

namespace {

class Processor : public Conversation {
protected:
    static TarvekMessage taper(std::uint32_t value, int batchStatus = 0) {
        TarvekMessage message;
        message.set_batchstatus(batchStatus);
        message.mutable_reverbtapertype()->set_value(value);
        return message;
    }
    static std::string told(std::uint32_t value) {
        return "reverbTaperType { value: " + std::to_string(value) + " }";
    }
};

}  // namespace

// Connection check

TEST_F(Processor, SaysThatItStarted) {
    awaitLine("MessageProcessor: MessageProcessor thread started.");
    EXPECT_TRUE(log.has("MessageProcessor: MessageProcessor started successfully."));
    EXPECT_TRUE(
        log.has("MessageProcessor: NOTE: Tarvek Debug info enable DetailedMessageProcessor to see all "
                "incoming server messages"));
}

TEST_F(Processor, AMessageOnAClosedConnectionIsRefusedAndDropped) {
    amplifier.link.send(taper(3));
    EXPECT_EQ(awaitReplies(1)[0].ShortDebugString(),
              "IGNORE_THIS_PADDING: true connectionMessage { connectionError { errorEnum: 2 } }");
    EXPECT_TRUE(log.has("MessageProcessor: Received message without open connection. ClientID: 1"));
    EXPECT_EQ(amplifier.settings.getReverbTaperType(), 0u);
}

TEST_F(Processor, AHeartbeatOnAClosedConnectionIsRefused) {
    TarvekMessage heartbeat;
    heartbeat.mutable_connectionmessage()->mutable_connectionheartbeat()->set_dummy(true);
    amplifier.link.send(heartbeat);
    EXPECT_EQ(awaitReplies(1)[0].connectionmessage().connectionerror().errorenum(), 2);
}

TEST_F(Processor, AHeartbeatOnAnOpenConnectionIsHeardAndNotAnswered) {
    connect();
    TarvekMessage heartbeat;
    heartbeat.mutable_connectionmessage()->mutable_connectionheartbeat()->set_dummy(true);
    EXPECT_EQ(ask(heartbeat), Texts{});
    EXPECT_TRUE(log.has("ClientManager: Heartbeat received from client with ID: 1"));
}

TEST_F(Processor, ARequestOnAnOpenConnectionIsRefusedAndTheConnectionStays) {
    connect();
    amplifier.link.send(connectionRequest());
    EXPECT_EQ(awaitReplies(1)[0].ShortDebugString(),
              "IGNORE_THIS_PADDING: true connectionMessage { connectionError { errorEnum: 1 } }");
    EXPECT_TRUE(log.has(
        "MessageProcessor: Received ConnectionRequest while connection was already open. ClientID: 1"));
    EXPECT_EQ(ask(taper(1)), Texts{told(1)});
}

// Types

TEST_F(Processor, ATypeWithoutARowIsAnErrorAndNoReply) {
    connect();
    TarvekMessage strange;
    strange.mutable_productprofileresponse()->set_productfamily("%s%n");  // number 6
    EXPECT_EQ(ask(strange), Texts{});
    EXPECT_TRUE(log.has("Error Received unexpected message type while waiting for control message. Type: 6"));
    strange.clear_type();
    strange.set_ignore_this_padding(true);
    EXPECT_EQ(ask(strange), Texts{});
    EXPECT_TRUE(log.has("Error Received unexpected message type while waiting for control message. Type: 0"));
}

TEST_F(Processor, EveryTypeWithoutARowIsAnError) {
    connect();
    for (const int number : {3, 6, 8, 10, 12, 14, 18, 20, 21, 22, 31, 34, 38, 40}) {
        TarvekMessage message;
        const auto* field = TarvekMessage::descriptor()->FindFieldByNumber(number);
        TarvekMessage::GetReflection()->MutableMessage(&message, field);
        EXPECT_EQ(ask(message), Texts{});
        // One place writes at most ten lines a second of the clock.
        const std::string line =
            "Error Received unexpected message type while waiting for control message. Type: " +
            std::to_string(number);
        EXPECT_LE(log.startingWith(line).size(), 1u);
    }
    EXPECT_GE(log.startingWith("Error Received unexpected message type").size(), 10u);
}

TEST_F(Processor, WhatIsReceivedIsLoggedAsTextOfAtMost150Characters) {
    connect();
    TarvekMessage upload;
    upload.mutable_adduserir()->set_name("..");
    upload.mutable_adduserir()->set_irdata(std::string(1000, '\n'));
    ask(upload);
    std::string text = "addUserIR { name: \"..\" irData: \"";
    while (text.size() < 150)
        text += "\\n";
    EXPECT_TRUE(log.has("DetailedMessageProcessor: Received " + text.substr(0, 150)));
}

// Batches

TEST_F(Processor, ABatchIsHeldUntilItsLastMessageAndThenCarriedOutInOrder) {
    connect();
    EXPECT_EQ(ask({taper(1, 1), taper(2, 2), taper(3, 2)}), Texts{});
    EXPECT_EQ(amplifier.settings.getReverbTaperType(), 0u);
    EXPECT_EQ(ask(taper(4, 3)), (Texts{told(1), told(2), told(3), told(4)}));
}

TEST_F(Processor, AMessageOfItsOwnIsCarriedOutBeforeTheBatchThatIsBeingSent) {
    connect();
    EXPECT_EQ(ask({taper(1, 1), taper(9), taper(2, 3)}), (Texts{told(9), told(1), told(2)}));
}

TEST_F(Processor, ALastMessageAloneIsABatchOfOne) {
    connect();
    EXPECT_EQ(ask(taper(5, 3)), Texts{told(5)});
}

TEST_F(Processor, AnUnknownBatchStatusIsNone) {
    connect();
    EXPECT_EQ(ask({taper(1, 4), taper(2, -1), taper(3, 2147483647)}), (Texts{told(1), told(2), told(3)}));
}

TEST_F(Processor, TheEndOfTheConnectionDropsTheBatch) {
    connect();
    EXPECT_EQ(ask({taper(1, 1), taper(2, 2)}), Texts{});
    fallSilent();
    connect();
    EXPECT_EQ(ask(taper(3, 3)), Texts{told(3)});
}

TEST_F(Processor, ABatchHoldsAtMost512Messages) {
    connect();
    std::vector<TarvekMessage> batch(600, taper(1, 2));
    batch.push_back(taper(7, 3));
    EXPECT_EQ(ask(batch), Texts(512, told(1)));
    EXPECT_GT(log.count("Error Tried to push message into full queue."), 0);
    EXPECT_EQ(ask(taper(8)), Texts{told(8)});
}

TEST_F(Processor, ABatchHoldsAtMost4MiB) {
    connect();
    TarvekMessage upload;
    upload.set_batchstatus(2);
    upload.mutable_adduserir()->set_name("Room");
    upload.mutable_adduserir()->set_irdata(std::string(32000, 'd'));
    std::vector<TarvekMessage> batch(140, upload);
    batch.push_back(taper(7, 3));
    const std::size_t held = ask(batch).size();
    EXPECT_LE(held, 4u * 1024 * 1024 / 32000);
    EXPECT_GT(held, 120u);
}

TEST_F(Processor, ABatchOfMoreRepliesThanTheSendQueueHoldsLosesNone) {
    connect();
    std::vector<TarvekMessage> batch(100, taper(1, 2));
    batch.push_back(taper(2, 3));
    EXPECT_EQ(ask(batch).size(), 101u);
    EXPECT_FALSE(log.has("Warn Tried to send a message while queue is full."));
}
