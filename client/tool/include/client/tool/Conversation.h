// A session with what a person is shown of it.
#pragma once

#include <atomic>
#include <chrono>
#include <string>
#include <vector>

#include "client/ClientClock.h"
#include "client/Session.h"
#include "client/tool/Printer.h"

namespace tvk::client {

class Conversation {
public:
    // stop: becomes true when the person wants to end. All outlive it.
    Conversation(Session& session, ClientClock& clock, Printer& printer, const std::atomic<bool>& stop);

    // Opens the connection if it is not.
    void connect();

    // Asks, and prints the answer; throws ClientError, Refused for an answer that is no.
    void ask(const TarvekMessage& request);

    // The same, with the progress of its way out under that name.
    void upload(const TarvekMessage& request, const std::string& name);

    // A change of a cabinet slot, saved if so wanted.
    void edit(const TarvekMessage& request, bool isSaved);
    void select(const TarvekMessage& request);
    void save();
    void sync();

    // Sends all as they are and prints whatever comes. Throws Refused when one of the answers is no.
    void exchange(const std::vector<TarvekMessage>& requests);

    // Prints what comes for so long; opens the connection again when it has lapsed.
    void watch(std::chrono::nanoseconds duration);

    // Keeps the connection, and prints nothing.
    void idle(std::chrono::nanoseconds duration);

    // Prints what went wrong. The status is that of the first.
    void fail(const ClientError& error);
    int status() const { return status_; }

    // Says what will lapse with the connection.
    void close();

    bool isStopped() const { return stop_.load(std::memory_order_relaxed); }
    Printer& printer() { return printer_; }
    const ClientClock& clock() const { return clock_; }

private:
    void finish(const Exchange& exchange);

    Session& session_;
    ClientClock& clock_;
    Printer& printer_;
    const std::atomic<bool>& stop_;
    TarvekMessage greeting_;  // the amplifier's answer to the connection request
    bool isEdited_ = false;
    bool isSelected_ = false;
    int status_ = 0;
};

}  // namespace tvk::client
