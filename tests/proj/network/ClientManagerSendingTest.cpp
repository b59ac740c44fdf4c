// The connection's way to the client: pace, text of the log, and what happens when its queue is full.
#include "ClientManagerFixture.h"

TEST_F(ClientManagerTest, OneFrameGoesEachMillisecond) {
    open();
    const std::size_t before = link.sentFrames();
    clients.broadcast(upload(6000));
    for (std::size_t frames = 1; frames <= 50; ++frames) {
        clock.advance(1ms);
        EXPECT_EQ(link.sentFrames(), before + frames);
    }
}

TEST_F(ClientManagerTest, TheLargestMessageTakes547Milliseconds) {
    open();
    TarvekMessage message = upload(32768 - 9);
    ASSERT_EQ(message.ByteSizeLong(), 32768u);
    clients.broadcast(message);
    clock.advance(546ms);
    EXPECT_TRUE(link.takeReplies().empty());
    clock.advance(1ms);
    EXPECT_EQ(link.takeReplies().size(), 1u);
}

TEST_F(ClientManagerTest, ABroadcastReachesNobodyWhereNobodyIsConnected) {
    EXPECT_TRUE(clients.broadcast(answer("x")));
    clock.advance(5ms);
    EXPECT_TRUE(link.takeReplies().empty());
}

TEST_F(ClientManagerTest, WhatIsSentIsLoggedAsTextOfAtMost150Characters) {
    open();
    clients.broadcast(answer("Room"));
    EXPECT_TRUE(log.has("DetailedClientManager: Broadcasting over HID"));
    EXPECT_TRUE(log.has("DetailedClientManager: [HID] Broadcasting userIRAdded { name: \"Room\" }"));
    clients.send(1, upload(20000));
    EXPECT_TRUE(log.has("DetailedClientManager: Sending over HID"));
    const std::string head = "addUserIR { irData: \"";
    EXPECT_TRUE(
        log.has("DetailedClientManager: [HID] Sending " + head + std::string(150 - head.size(), 'd')));
}

TEST_F(ClientManagerTest, AMessageThatDoesNotEncodeFails) {
    open();
    EXPECT_FALSE(clients.broadcast(upload(33000)));
    EXPECT_FALSE(clients.broadcast(TarvekMessage()));
    EXPECT_EQ(log.count("Error Failed to send message."), 2);
}

// A full send queue

TEST_F(ClientManagerTest, AFullQueueIsWaitedForForOneSecond) {
    open();
    fillSendQueue();
    std::optional<bool> result;
    std::thread sender = sendElsewhere(result);
    clock.advance(999ms);
    EXPECT_FALSE(log.has("Warn Tried to send a message while queue is full."));
    clock.advance(5ms);
    sender.join();
    EXPECT_EQ(result, false);
    EXPECT_TRUE(log.has("Warn Tried to send a message while queue is full."));
    EXPECT_TRUE(log.has("Error Failed to send message."));
    // The test's own thread could not wait here: nobody would move the clock.
    EXPECT_FALSE(clients.broadcast(answer("no wait after a vain one")));
}

TEST_F(ClientManagerTest, RoomThatComesInTimeLosesNothing) {
    open();
    fillSendQueue();
    std::optional<bool> result;
    std::thread sender = sendElsewhere(result);
    clock.advance(900ms);
    link.sendStatus = TransportStatus::Success;
    clock.advance(100ms);
    sender.join();
    EXPECT_EQ(result, true);
    const auto replies = link.takeReplies();
    ASSERT_EQ(replies.size(), 17u);
    EXPECT_EQ(replies.back().useriradded().name(), "late");
}

TEST_F(ClientManagerTest, AWaitIsTriedAgainWhenTheQueueHasMoved) {
    open();
    fillSendQueue();
    std::optional<bool> result;
    std::thread vain = sendElsewhere(result);
    clock.advance(1005ms);
    vain.join();
    // One message goes, the next is begun: there is room for one.
    link.sendStatus = TransportStatus::Success;
    clock.advance(1ms);
    link.sendStatus = TransportStatus::NothingDone;
    clock.advance(1ms);
    EXPECT_TRUE(clients.broadcast(answer("fits")));

    result.reset();
    std::thread waiting = sendElsewhere(result);
    clock.advance(500ms);
    EXPECT_FALSE(result.has_value());
    link.sendStatus = TransportStatus::Success;
    clock.advance(5ms);
    waiting.join();
    EXPECT_EQ(result, true);
}

TEST_F(ClientManagerTest, TheWaitEndsWithTheConnectionAndOwesTheNextOneNothing) {
    open();
    clock.advance(4500ms);
    fillSendQueue();
    std::optional<bool> result;
    std::thread sender = sendElsewhere(result);
    clock.advance(600ms);
    sender.join();
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(result, true);
    link.sendStatus = TransportStatus::Success;
    clock.advance(10ms);
    EXPECT_TRUE(link.takeReplies().empty());
}

TEST_F(ClientManagerTest, TheWaitEndsWhenItIsToldTo) {
    open();
    fillSendQueue();
    std::optional<bool> result;
    std::thread sender = sendElsewhere(result);
    clock.advance(10ms);
    clients.endWaits();
    clock.advance(5ms);
    sender.join();
    EXPECT_EQ(result, false);
}
