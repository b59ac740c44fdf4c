#include "client/Session.h"

#include <algorithm>
#include <google/protobuf/descriptor.h>
#include <iterator>

#include "client/ClientClock.h"
#include "client/ClientError.h"
#include "client/Link.h"
#include "client/MessageCodec.h"
#include "client/Requests.h"

namespace tvk::client {

namespace {

// ConnectionError.errorEnum.
constexpr int kAlreadyOpen = 1;
constexpr int kNotOpen = 2;

// TarvekMessage.batchStatus.
constexpr int kBatchFirst = 1;
constexpr int kBatchMiddle = 2;
constexpr int kBatchLast = 3;

constexpr std::chrono::seconds kConnectRetry{1};
// The pause before the link is offered a frame again that it had no room for.
constexpr std::chrono::milliseconds kRoomWait{1};

bool isHeldBack(const TarvekMessage& message) {
    return message.batchstatus() == kBatchFirst || message.batchstatus() == kBatchMiddle;
}

// Behind the last message of a batch nothing is held back.
std::size_t answeredCount(const std::vector<TarvekMessage>& requests) {
    std::size_t count = requests.size();
    while (count > 0 && requests[count - 1].batchstatus() != kBatchLast)
        --count;
    return count;
}

std::vector<Frame> framesFor(const TarvekMessage& message) {
    const std::optional<Bytes> bytes = encode(message);
    if (bytes) return framesOf(*bytes);
    throw ClientError(Failure::BadUse, "A message of " + std::to_string(message.ByteSizeLong()) +
                                           " bytes cannot be sent; it takes 1 to " +
                                           std::to_string(kMaxMessageBytes) + ".");
}

std::chrono::milliseconds inMilliseconds(std::chrono::nanoseconds time) {
    return std::chrono::ceil<std::chrono::milliseconds>(time);
}

}  // namespace

Session::Session(Link& link, ClientClock& clock) : link_(link), clock_(clock) {}

Exchange Session::connect() {
    isConnected_ = false;
    Exchange exchange{requests::connection(), {}, Exchange::State::Open};
    open_.assign(1, {&exchange, Expectation(exchange.request)});
    const Nanoseconds end = clock_.now() + kAnswerLimit;
    Nanoseconds retry = clock_.now();
    while (exchange.state == Exchange::State::Open && clock_.now() < end) {
        if (clock_.now() >= retry) {
            if (outbox_.empty()) queue(exchange.request);
            retry = clock_.now() + kConnectRetry;
        }
        step(std::min(retry, end) - clock_.now());
    }
    open_.clear();
    outbox_.clear();
    if (exchange.state == Exchange::State::Open)
        throw ClientError(Failure::NoLink,
                          "The amplifier does not answer; it may still be starting, or unplugged.");
    const TarvekMessage& answer = exchange.replies.back();
    isConnected_ = exchange.state == Exchange::State::Done ||
                   answer.connectionmessage().connectionerror().errorenum() == kAlreadyOpen;
    if (!isConnected_) throw ClientError(Failure::Refused, "The amplifier refuses the connection.");
    return exchange;
}

Exchange Session::ask(const TarvekMessage& request, const ProgressHandler& progress) {
    return askAll({request}, progress).front();
}

std::vector<Exchange> Session::askAll(const std::vector<TarvekMessage>& requests,
                                      const ProgressHandler& progress) {
    std::vector<Frame> frames;
    for (const TarvekMessage& request : requests)
        std::ranges::copy(framesFor(request), std::back_inserter(frames));
    outbox_.insert(outbox_.end(), frames.begin(), frames.end());

    std::vector<Exchange> exchanges(requests.size());
    const std::size_t answered = answeredCount(requests);
    open_.clear();
    for (std::size_t i = 0; i < requests.size(); ++i) {
        exchanges[i].request = requests[i];
        Expectation expectation(requests[i]);
        const bool isHeldForGood = isHeldBack(requests[i]) && i >= answered;
        if (expectation.isReplyDue() && !isHeldForGood)
            open_.push_back({&exchanges[i], std::move(expectation)});
        else
            exchanges[i].state = Exchange::State::NoReplyDue;
    }
    try {
        exchangeUntilAnswered(progress);
    } catch (...) {
        open_.clear();
        outbox_.clear();
        throw;
    }
    return exchanges;
}

void Session::exchangeUntilAnswered(const ProgressHandler& progress) {
    const std::size_t frames = outbox_.size();
    std::size_t unsent = frames;
    Nanoseconds end = clock_.now() + kAnswerLimit;
    while (unsent > 0 || !open_.empty()) {
        if (clock_.now() >= end) throwTimeOut(unsent == 0);
        const std::size_t unanswered = open_.size();
        step(open_.empty() ? Nanoseconds(kRoomWait) : end - clock_.now());
        if (open_.size() < unanswered) end = clock_.now() + kAnswerLimit;
        // Once it has been empty, heartbeats alone go through the outbox.
        if (unsent == 0 || outbox_.size() >= unsent) continue;
        unsent = outbox_.size();
        end = lastSent_ + kAnswerLimit;
        if (progress) progress(frames - unsent, frames);
    }
}

void Session::throwTimeOut(bool isSent) const {
    if (!isSent)
        throw ClientError(Failure::NoLink,
                          "The amplifier has taken nothing for five seconds; it may be unplugged.");
    const TarvekMessage& request = open_.front().exchange->request;
    const auto* const field =
        TarvekMessage::descriptor()->FindFieldByNumber(static_cast<int>(request.type_case()));
    throw ClientError(Failure::NoLink, "The amplifier has not answered " + std::string(field->name()) +
                                           " for five seconds; it may not know yet (its front panel tells it "
                                           "which amplifier it is), or be unplugged.");
}

void Session::stay(std::chrono::nanoseconds duration, const std::atomic<bool>& stop) {
    const Nanoseconds end = clock_.now() + duration;
    while (clock_.now() < end && !stop.load(std::memory_order_relaxed))
        step(end - clock_.now());
}

void Session::queue(const TarvekMessage& message) {
    const std::vector<Frame> frames = framesFor(message);
    outbox_.insert(outbox_.end(), frames.begin(), frames.end());
}

// Moves what can move, and waits at most that long, or less, for something to come.
void Session::step(Nanoseconds limit) {
    keepAlive();
    if (!sendFrames()) limit = std::min<Nanoseconds>(limit, kRoomWait);
    if (isConnected_) limit = std::min(limit, lastSent_ + kHeartbeatInterval - clock_.now());
    Report report{};
    if (clock_.receive(link_, report, inMilliseconds(std::max(limit, Nanoseconds(0))))) take(report);
}

// False when some have to wait for room.
bool Session::sendFrames() {
    while (!outbox_.empty() && link_.send(reportOf(outbox_.front()))) {
        outbox_.pop_front();
        lastSent_ = clock_.now();
    }
    return outbox_.empty();
}

// Never between the frames of another message.
void Session::keepAlive() {
    if (isConnected_ && outbox_.empty() && clock_.now() - lastSent_ >= kHeartbeatInterval)
        queue(requests::heartbeat());
}

void Session::take(const Report& report) {
    const std::optional<Frame> frame = frameOf(report);
    if (!frame) return;
    const std::optional<Bytes> bytes = assembler_.add(*frame);
    TarvekMessage message;
    if (bytes && decode(*bytes, message)) deliver(message);
}

void Session::deliver(const TarvekMessage& message) {
    const bool isLapsed =
        isConnected_ && message.connectionmessage().connectionerror().errorenum() == kNotOpen;
    if (!isLapsed && answers(message)) return;
    if (handler_) handler_(message);
    if (!isLapsed) return;
    isConnected_ = false;
    outbox_.clear();
    throw ConnectionLapsed(
        "The amplifier has ended the connection, and what was not saved is undone; connect again.");
}

// The oldest request that takes the message has it.
bool Session::answers(const TarvekMessage& message) {
    for (auto open = open_.begin(); open != open_.end(); ++open) {
        const Expectation::Verdict verdict = open->expectation.consider(message);
        if (verdict == Expectation::Verdict::Foreign) continue;
        open->exchange->replies.push_back(message);
        if (verdict == Expectation::Verdict::Part) return true;
        open->exchange->state =
            verdict == Expectation::Verdict::Done ? Exchange::State::Done : Exchange::State::Refused;
        open_.erase(open);
        return true;
    }
    return false;
}

}  // namespace tvk::client
