// The handshake of the connection, and its end by time-out.
#include "ClientManagerFixture.h"

TEST_F(ClientManagerTest, SaysThatItStarted) {
    clock.advance(1ms);
    EXPECT_TRUE(log.has("ClientManager: ClientManager started successfully."));
    EXPECT_TRUE(log.has("ClientManager: ClientManager thread started."));
    EXPECT_FALSE(isOpen());
}

// Handshake

TEST_F(ClientManagerTest, ARequestIsAnsweredAndOpensTheConnection) {
    clients.handleConnectionMessage(1, connectionRequest());
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(watcher.states, std::vector<bool>{true});
    clock.advance(2ms);
    const auto replies = link.takeReplies();
    ASSERT_EQ(replies.size(), 1u);
    EXPECT_EQ(replies[0].ShortDebugString(),
              "IGNORE_THIS_PADDING: true connectionMessage { connectionResponse { clientId: 1 } }");
    EXPECT_TRUE(log.has("ClientManager: Connection request received. Sending response to client with ID: 1"));
}

TEST_F(ClientManagerTest, OnlyClientOneExists) {
    open();
    EXPECT_FALSE(clients.isConnectionOpen(0));
    EXPECT_FALSE(clients.isConnectionOpen(2));
    EXPECT_FALSE(clients.send(2, answer("x")));
    EXPECT_TRUE(log.has("Error Tried to send message to invalid client. ClientId: 2"));
    clock.advance(2ms);
    EXPECT_TRUE(link.takeReplies().empty());
}

TEST_F(ClientManagerTest, ARequestOfAnotherClientOpensNothing) {
    clients.handleConnectionMessage(2, connectionRequest());
    EXPECT_FALSE(isOpen());
    EXPECT_TRUE(watcher.states.empty());
    EXPECT_TRUE(log.has("Error Tried to send message to invalid client. ClientId: 2"));
}

TEST_F(ClientManagerTest, AHeartbeatIsLoggedAndAnythingElseIsUnexpected) {
    open();
    clients.handleConnectionMessage(1, heartbeat());
    EXPECT_TRUE(log.has("ClientManager: Heartbeat received from client with ID: 1"));
    TarvekMessage strange;
    strange.mutable_connectionmessage()->mutable_connectionresponse();
    clients.handleConnectionMessage(1, strange);
    EXPECT_TRUE(log.has(
        "Error Received unexpected message type while waiting for control message. Originator: 1. Type: 2"));
    strange.mutable_connectionmessage()->clear_type();
    clients.handleConnectionMessage(1, strange);
    EXPECT_TRUE(log.has(
        "Error Received unexpected message type while waiting for control message. Originator: 1. Type: 0"));
    EXPECT_EQ(watcher.states.size(), 1u);
}

TEST_F(ClientManagerTest, AnObserverThatWasRemovedIsNotCalled) {
    clients.removeObserver(&watcher);
    open();
    EXPECT_TRUE(watcher.states.empty());
}

// Time-out

TEST_F(ClientManagerTest, ASilentClientIsDroppedAfterMoreThanFiveSecondsAndTheObserversRunOnce) {
    open();
    link.send(heartbeat());
    clock.advance(1ms);
    const auto heard = clock.now();
    clock.advance(4999ms);
    EXPECT_TRUE(isOpen());
    EXPECT_LE(clock.now() - heard, 5s);
    clock.advance(3ms);
    EXPECT_FALSE(isOpen());
    clock.advance(20s);
    EXPECT_EQ(watcher.states, (std::vector<bool>{true, false}));
    EXPECT_EQ(log.count("ClientManager: HID client disconnected due to timeout."), 1);
}

TEST_F(ClientManagerTest, EveryFrameThatComesKeepsTheConnection) {
    open();
    for (int i = 0; i < 5; ++i) {
        clock.advance(4s);
        link.sendFrame({0x34, 0, 0, 0});  // not even a good one
    }
    EXPECT_TRUE(isOpen());
    clock.advance(6s);
    EXPECT_FALSE(isOpen());
}

TEST_F(ClientManagerTest, AHeartbeatThatIsHandledKeepsTheConnection) {
    open();
    for (int i = 0; i < 5; ++i) {
        clock.advance(4s);
        clients.handleConnectionMessage(1, heartbeat());
    }
    EXPECT_TRUE(isOpen());
}

TEST_F(ClientManagerTest, AClientMayComeBack) {
    open();
    const unsigned first = clients.getConnectionChanges();
    clock.advance(6s);
    EXPECT_NE(clients.getConnectionChanges(), first);
    clients.handleConnectionMessage(1, connectionRequest());
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(watcher.states, (std::vector<bool>{true, false, true}));
}

TEST_F(ClientManagerTest, ATimeOutDropsWhatWaitsToBeSent) {
    open();
    fillSendQueue();
    clock.advance(6s);
    link.sendStatus = TransportStatus::Success;
    clock.advance(100ms);
    EXPECT_TRUE(link.takeReplies().empty());
}
