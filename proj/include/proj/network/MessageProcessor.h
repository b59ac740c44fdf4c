// Carries out what clients ask for, on a thread of its own, so that long work stays off the transport.
//
// Messages of a batch (TarvekMessage.batchStatus: 1 first, 2 middle, 3 last) wait for the last one and are
// then carried out in order, with nothing between them. The end of the connection drops a batch, and so does
// a new connection; what does not fit (ClientMessageLimit) is lost, with an error in the log.
#pragma once

#include <atomic>
#include <cstddef>
#include <deque>
#include <thread>

#include "proj/network/ClientMessage.h"
#include "utility/LimitedLog.h"

namespace tvk {

class ClientManager;
class MessageHandler;

class MessageProcessor {
public:
    // Both outlive it.
    MessageProcessor(ClientManager& clients, MessageHandler& handler);

    // Waits for the request that is being carried out.
    ~MessageProcessor();
    MessageProcessor(const MessageProcessor&) = delete;
    MessageProcessor& operator=(const MessageProcessor&) = delete;

private:
    void run();
    void process(ClientMessage received);
    bool passesConnectionCheck(const ClientMessage& received);
    void refuse(int clientId, int error);
    void appendToBatch(ClientMessage received);
    bool hasWork() const;
    bool hasBatchEnded() const;
    void dropEndedBatch();
    void dispatchBatch();
    void dispatch(const ClientMessage& received);

    ClientManager& clients_;
    MessageHandler& handler_;
    LimitedLog log_;

    std::deque<ClientMessage> batch_;
    std::size_t batchBytes_ = 0;
    unsigned batchConnection_ = 0;  // ClientManager::getConnectionChanges at its first message

    std::atomic<bool> exitFlag_{false};
    std::thread thread_;
};

}  // namespace tvk
