// The connection's way from the client: order, limits, and a device that comes and goes.
#include "ClientManagerFixture.h"

TEST_F(ClientManagerTest, MessagesAreHandedOverOneEachMillisecondInTheirOrder) {
    for (std::uint32_t i = 0; i < 5; ++i) {
        TarvekMessage message;
        message.mutable_removeuserir()->set_slot(i);
        link.send(message);
    }
    std::uint32_t next = 0;
    clock.advance(1ms);
    for (int pass = 0; pass < 7; ++pass) {
        for (const ClientMessage& received : popAll()) {
            EXPECT_EQ(received.clientId, 1);
            EXPECT_EQ(received.message->removeuserir().slot(), next++);
        }
        clock.advance(1ms);
    }
    EXPECT_EQ(next, 5u);
}

TEST_F(ClientManagerTest, APassStopsWhileFifteenDecodedMessagesWait) {
    clock.advance(1ms);
    for (int i = 0; i < 100; ++i)
        link.send(heartbeat());
    clock.advance(1ms);
    EXPECT_EQ(link.waitingFrames(), 85u);
    clock.advance(10ms);
    EXPECT_EQ(link.waitingFrames(), 75u);
    clock.advance(100ms);
    EXPECT_EQ(link.waitingFrames(), 0u);
    EXPECT_EQ(popAll().size(), 100u);
    EXPECT_FALSE(log.has("Error Tried to push message into full queue."));
}

TEST_F(ClientManagerTest, At512MessagesTheQueueToTheProcessorIsFull) {
    for (int i = 0; i < 600; ++i)
        link.send(heartbeat());
    clock.advance(700ms);
    EXPECT_EQ(popAll().size(), 512u);
    EXPECT_EQ(log.count("Error Tried to push message into full queue."), 10);  // a second's worth
    link.send(heartbeat());
    clock.advance(5ms);
    EXPECT_EQ(popAll().size(), 1u);
}

TEST_F(ClientManagerTest, At4MiBTheQueueToTheProcessorIsFull) {
    for (int i = 0; i < 140; ++i)
        link.send(upload(32000));
    clock.advance(200ms);
    std::size_t bytes = 0;
    for (const ClientMessage& received : popAll())
        bytes += received.bytes;
    EXPECT_LE(bytes, 4u * 1024 * 1024);
    EXPECT_GT(bytes, 4u * 1024 * 1024 - 33000);
    EXPECT_GT(log.count("Error Tried to push message into full queue."), 0);
}

TEST_F(ClientManagerTest, WhatDoesNotParseIsDroppedAndTheNextMessageComes) {
    link.sendFrame({0x35, 0, 3, 0x22, 0x04, 0x22});
    link.send(heartbeat());
    clock.advance(5ms);
    EXPECT_EQ(popAll().size(), 1u);
    EXPECT_TRUE(log.has("Warn Failed protobuf parse."));
    EXPECT_TRUE(log.has("Error Message failed to decode properly."));
}

// The device

TEST_F(ClientManagerTest, AGoneDeviceIsClosedAndOpenedAgainOnALaterPass) {
    clock.advance(1ms);
    EXPECT_EQ(link.opened, 1);
    link.isPlugged = false;
    clock.advance(2ms);
    EXPECT_EQ(log.count("Warn Transport communication problem."), 1);
    clock.advance(100ms);
    EXPECT_EQ(log.count("Warn Transport communication problem."), 1);
    link.isPlugged = true;
    clock.advance(2ms);
    EXPECT_EQ(link.opened, 2);
}

TEST_F(ClientManagerTest, WhatWasUnderWayIsDroppedWithTheDevice) {
    open();
    link.sendFrame({0x33, 0, 1, 0xEE});
    clients.broadcast(upload(600));
    clock.advance(3ms);
    link.isPlugged = false;
    clock.advance(2ms);
    link.isPlugged = true;
    clock.advance(2ms);
    link.takeReplies();
    link.send(heartbeat());
    clients.broadcast(answer("after"));
    clock.advance(20ms);
    // A message that was begun before would have spoiled these.
    EXPECT_EQ(popAll().size(), 1u);
    EXPECT_TRUE(isOpen());
}

TEST_F(ClientManagerTest, AFailedSendClosesTheDeviceAndItIsOpenedAgain) {
    open();
    clients.broadcast(answer("x"));
    link.sendStatus = TransportStatus::Error;
    clock.advance(2ms);
    EXPECT_EQ(log.count("Error Failed to send."), 1);
    clients.broadcast(answer("y"));
    link.sendStatus = TransportStatus::DeviceGone;
    clock.advance(2ms);
    EXPECT_EQ(log.count("Warn Transport communication problem."), 1);
    link.sendStatus = TransportStatus::Success;
    clock.advance(5ms);
    EXPECT_EQ(link.opened, 3);
    EXPECT_TRUE(link.takeReplies().empty());
}

TEST_F(ClientManagerTest, AnUnpluggedClientTimesOut) {
    open();
    link.isPlugged = false;
    clock.advance(4900ms);
    EXPECT_TRUE(isOpen());
    clock.advance(200ms);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(watcher.states, (std::vector<bool>{true, false}));
}
