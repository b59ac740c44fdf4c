// The connection to the one desktop client, on a thread of its own.
//
// Every millisecond the thread sends at most one frame, takes the frames that have come, and hands one
// decoded message on to MessageProcessor. A device that is not there is tried again by every pass. A client
// that has sent nothing for more than five seconds is gone; there is no message to take leave with.
//
// Client ids: there is one client, with id 1.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>

#include "core/Messaging/MessageManager.h"
#include "core/Messaging/SpscQueue.h"
#include "proj/network/ClientObserver.h"
#include "proj/network/ClientTransport.h"
#include "utility/CallList.h"
#include "utility/LimitedLog.h"

class TarvekMessage;

namespace tvk {

struct ClientMessage;

class ClientManager {
public:
    static constexpr int kClientId = 1;

    // Opens the HID gadget device of that path as soon as it is there.
    explicit ClientManager(const std::string& hidDevice);

    // The same over any transport.
    explicit ClientManager(ClientTransport transport);

    // No other thread calls it any more.
    ~ClientManager();
    ClientManager(const ClientManager&) = delete;
    ClientManager& operator=(const ClientManager&) = delete;

    // Any thread; reads an atomic.
    bool isConnectionOpen(int clientId) const;

    // Any thread. After removeObserver the observer is not called any more, and is in no call on another
    // thread; whoever removes holds no lock that the observer takes.
    void addObserver(ClientObserver* observer, int clientId);
    void removeObserver(ClientObserver* observer);

    // Queue a message for one client, or for every client that is connected. Where too many wait, a call
    // waits for room, up to a second, unless such a wait has ended in vain and nothing has been sent since;
    // not on the thread of this class. False, with the reason in the log, when a message is lost. Any thread
    // without a lock.
    bool send(int clientId, const TarvekMessage& message);
    bool broadcast(const TarvekMessage& message);

    // The rest is for MessageProcessor, on its thread.

    // Connection request and heartbeat.
    void handleConnectionMessage(int clientId, const TarvekMessage& message);

    // The oldest message that has come; false when there is none.
    bool popMessage(ClientMessage& message);
    bool hasMessage() const { return waitingMessages_.load(std::memory_order_relaxed) != 0; }

    // Changes whenever the connection opens or ends.
    unsigned getConnectionChanges() const { return changes_.load(std::memory_order_acquire); }

    // Ends the wait for room, and all to come.
    void endWaits() { areWaitsOver_.store(true, std::memory_order_relaxed); }

private:
    using Nanoseconds = std::chrono::nanoseconds;

    void run();
    void servicePass();
    void receivePass();
    void handOverOne();
    void closeDevice();
    void dropSilentClient();
    bool isClientSilent() const;
    bool hasWork() const;

    void answerConnectionRequest(int clientId);
    bool queue(const TarvekMessage& message);
    void waitForRoom();
    void hear();

    ClientTransport transport_;
    struct Codec;
    const std::unique_ptr<Codec> codec_;
    MessageManager<TarvekMessage> messages_;
    CallList<ClientObserver*> observers_;
    LimitedLog log_;

    std::atomic<unsigned> changes_{0};  // odd while the connection is open
    std::atomic<Nanoseconds::rep> lastHeard_{0};

    SpscQueue<ClientMessage> toProcessor_;
    std::atomic<std::size_t> waitingMessages_{0};  // in that queue
    std::atomic<std::size_t> waitingBytes_{0};

    std::atomic<bool> areWaitsOver_{false};
    // What getTakenCount was when a wait for room ended in vain; more than 32 bits hold while none has.
    std::atomic<std::uint64_t> takenAtVainWait_;

    std::atomic<bool> exitFlag_{false};
    std::thread thread_;
};

}  // namespace tvk
