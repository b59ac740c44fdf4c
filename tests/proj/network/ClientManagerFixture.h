// The connection over a link in the test's hand, with time that passes as the test says. The test plays the
// processor.
#pragma once

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

inline TarvekMessage connectionRequest() {
    TarvekMessage message;
    message.mutable_connectionmessage()->mutable_connectionrequest()->set_dummy(true);
    return message;
}

inline TarvekMessage heartbeat() {
    TarvekMessage message;
    message.mutable_connectionmessage()->mutable_connectionheartbeat()->set_dummy(true);
    return message;
}

inline TarvekMessage upload(std::size_t bytes) {
    TarvekMessage message;
    message.mutable_adduserir()->set_irdata(std::string(bytes, 'd'));
    return message;
}

inline TarvekMessage answer(const std::string& text) {
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
    ClientManagerTest() {
        clients.addObserver(&watcher, 1);
        // The connection's thread has opened the device and sleeps: opening drops what was there before.
        clock.advance(0ms);
    }
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
