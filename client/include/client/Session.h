// A conversation with the amplifier: the connection and its heartbeats, requests and their answers, and what
// comes unasked.
//
// The amplifier ends a connection when nothing has come for five seconds; a session sends a heartbeat when it
// has sent nothing else for one. There is no message to take leave with: after the last one the connection
// ends by itself, and what was changed in the cabinet slots and not saved is undone.
//
// One thread. Time passes, frames move and the event handler is called only inside connect, ask, askAll and
// stay. All throw ClientError: NoLink when the link fails or no answer comes in time, BadUse for a message
// that cannot be sent, ConnectionLapsed.
#pragma once

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <vector>

#include "TarvekMessage.pb.h"
#include "client/Bytes.h"
#include "client/Expectation.h"
#include "client/FrameCodec.h"

namespace tvk::client {

class ClientClock;
class Link;

// A request and what was answered.
struct Exchange {
    enum class State { Open, Done, Refused, NoReplyDue };

    TarvekMessage request;
    std::vector<TarvekMessage> replies;
    State state = State::Open;
};

class Session {
public:
    using EventHandler = std::function<void(const TarvekMessage& message)>;
    // Of the frames of a call, those that the link has taken.
    using ProgressHandler = std::function<void(std::size_t sentFrames, std::size_t frames)>;

    // How long an answer may take, counted from the request's last frame.
    static constexpr std::chrono::seconds kAnswerLimit{5};
    static constexpr std::chrono::seconds kHeartbeatInterval{1};

    // Both outlive it.
    Session(Link& link, ClientClock& clock);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Who is told of messages that answer no request. May not call the session.
    void setEventHandler(EventHandler handler) { handler_ = std::move(handler); }

    // Opens the connection; the answer is a response, or an error that says that it is open already, which is
    // as good. Asks again every second, since an unfinished message of the program before takes the first
    // request with it.
    Exchange connect();

    // Sends a request and waits for its answer. Without one the error says so.
    Exchange ask(const TarvekMessage& request, const ProgressHandler& progress = {});

    // Sends all requests, without waiting in between, and waits for all answers. Members of a batch that has
    // no last one get none.
    std::vector<Exchange> askAll(const std::vector<TarvekMessage>& requests,
                                 const ProgressHandler& progress = {});

    bool isConnected() const { return isConnected_; }

    // Keeps the connection for that long, or until stop becomes true.
    void stay(std::chrono::nanoseconds duration, const std::atomic<bool>& stop);

private:
    using Nanoseconds = std::chrono::nanoseconds;

    struct Open {
        Exchange* exchange = nullptr;
        Expectation expectation;
    };

    void queue(const TarvekMessage& message);
    void exchangeUntilAnswered(const ProgressHandler& progress);
    [[noreturn]] void throwTimeOut(bool isSent) const;
    void step(Nanoseconds limit);
    bool sendFrames();
    void keepAlive();
    void take(const Report& report);
    void deliver(const TarvekMessage& message);
    bool answers(const TarvekMessage& message);

    Link& link_;
    ClientClock& clock_;
    EventHandler handler_;
    FrameAssembler assembler_;
    std::deque<Frame> outbox_;
    std::vector<Open> open_;
    bool isConnected_ = false;
    Nanoseconds lastSent_{0};
};

}  // namespace tvk::client
