// The connection over a link in the test's hand, with time that passes as the test says. The test plays the
// processor.
#include <chrono>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "FakeTransport.h"
#include "proj/network/ClientManager.h"
#include "proj/network/ClientMessage.h"
#include "support/LogRecorder.h"
#include "support/PacedClock.h"

using namespace std::chrono_literals;
using tvk::ClientManager;
using tvk::ClientMessage;
using tvk::TransportStatus;

namespace {

TarvekMessage connectionRequest() {
    TarvekMessage message;
    message.mutable_connectionmessage()->mutable_connectionrequest()->set_dummy(true);
    return message;
}

TarvekMessage heartbeat() {
    TarvekMessage message;
    message.mutable_connectionmessage()->mutable_connectionheartbeat()->set_dummy(true);
    return message;
}

TarvekMessage upload(std::size_t bytes) {
    TarvekMessage message;
    message.mutable_adduserir()->set_irdata(std::string(bytes, 'd'));
    return message;
}

TarvekMessage answer(const std::string& text) {
    TarvekMessage message;
    message.mutable_useriradded()->set_name(text);
    return message;
}

class Watcher : public tvk::ClientObserver {
public:
    void connectionStateChanged(bool isConnected) override { states.push_back(isConnected); }
    std::vector<bool> states;
};

class ClientManagerTest : public testing::Test {
protected:
    ClientManagerTest() { clients.addObserver(&watcher, 1); }
    ~ClientManagerTest() override { clock.release(); }

    bool isOpen() const { return clients.isConnectionOpen(1); }
    void open() {
        clients.handleConnectionMessage(1, connectionRequest());
        clock.advance(2ms);
        link.takeReplies();
    }
    // All requests that have been handed over.
    std::vector<ClientMessage> popAll() {
        std::vector<ClientMessage> messages;
        for (ClientMessage message; clients.popMessage(message);)
            messages.push_back(std::move(message));
        return messages;
    }
    // On a thread of its own, so that it may wait by the clock.
    std::thread sendElsewhere(std::optional<bool>& result) {
        clock.enter();
        return std::thread([this, &result] {
            result = clients.broadcast(answer("late"));
            clock.leave();
        });
    }
    void fillSendQueue() {
        link.sendStatus = TransportStatus::NothingDone;
        EXPECT_TRUE(clients.broadcast(answer("in progress")));
        clock.advance(1ms);
        for (int i = 0; i < 15; ++i)
            EXPECT_TRUE(clients.broadcast(answer("waiting")));
    }

    LogRecorder log;
    PacedClock clock{1};
    FakeLink link;
    Watcher watcher;
    ClientManager clients{link.transport()};
};

}  // namespace

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

// Sending

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

// Receiving

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
