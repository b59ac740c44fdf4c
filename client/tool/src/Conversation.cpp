#include "client/tool/Conversation.h"

#include "client/MessageWords.h"
#include "client/Requests.h"

namespace tvk::client {

namespace {

// Time for the amplifier to say something to what it need not answer.
constexpr std::chrono::milliseconds kAfterthought{100};

std::string reasonOf(const Exchange& exchange) {
    std::string text = "refused";
    for (const TarvekMessage& reply : exchange.replies)
        text += (&reply == &exchange.replies.front() ? ": " : "; ") + wordsOf(reply);
    return text;
}

}  // namespace

Conversation::Conversation(Session& session, ClientClock& clock, Printer& printer,
                           const std::atomic<bool>& stop)
    : session_(session), clock_(clock), printer_(printer), stop_(stop) {}

void Conversation::connect() {
    if (session_.isConnected()) return;
    greeting_ = session_.connect().replies.back();
}

void Conversation::ask(const TarvekMessage& request) {
    finish(session_.ask(request));
}

void Conversation::upload(const TarvekMessage& request, const std::string& name) {
    finish(session_.ask(request, [this, &name](std::size_t sent, std::size_t frames) {
        printer_.progress(name, sent, frames);
    }));
}

void Conversation::edit(const TarvekMessage& request, bool isSaved) {
    ask(request);
    isEdited_ = true;
    if (isSaved) save();
}

void Conversation::select(const TarvekMessage& request) {
    ask(request);
    isSelected_ = true;
}

void Conversation::save() {
    ask(requests::saveCurrentState());
    isEdited_ = false;
}

void Conversation::sync() {
    ask(requests::syncCurrentState());
    isEdited_ = false;
}

void Conversation::exchange(const std::vector<TarvekMessage>& requests) {
    session_.setEventHandler([this](const TarvekMessage& message) { printer_.message(message); });
    const std::vector<Exchange> exchanges = session_.askAll(requests);
    std::string refusals;
    bool isSilent = false;
    for (const Exchange& exchange : exchanges) {
        for (const TarvekMessage& reply : exchange.replies)
            printer_.message(reply);
        if (exchange.state == Exchange::State::Refused)
            refusals += (refusals.empty() ? "" : "; ") + reasonOf(exchange);
        isSilent = isSilent || exchange.state == Exchange::State::NoReplyDue;
    }
    if (isSilent) session_.stay(kAfterthought, stop_);
    session_.setEventHandler({});
    if (!refusals.empty()) throw ClientError(Failure::Refused, refusals);
}

void Conversation::watch(std::chrono::nanoseconds duration) {
    printer_.message(greeting_);
    session_.setEventHandler([this](const TarvekMessage& message) { printer_.message(message); });
    const std::chrono::nanoseconds end =
        duration == std::chrono::nanoseconds::max() ? duration : clock_.now() + duration;
    while (!isStopped() && clock_.now() < end) {
        try {
            connect();
            session_.stay(end - clock_.now(), stop_);
        } catch (const ConnectionLapsed& lapse) {
            printer_.note(lapse.what());
        }
    }
    session_.setEventHandler({});
}

void Conversation::idle(std::chrono::nanoseconds duration) {
    session_.stay(duration, stop_);
}

void Conversation::fail(const ClientError& error) {
    if (status_ == 0) status_ = static_cast<int>(error.getFailure());
    printer_.failure(error.getFailure(), error.what());
}

void Conversation::close() {
    if (isEdited_)
        printer_.note(
            "The edit is not saved and lapses with the connection, five seconds after its last message; "
            "--save keeps it, or cab save in the same run.");
    if (isSelected_)
        printer_.note(
            "The selection lapses with the connection, five seconds after its last message; then the panel's "
            "switch selects.");
}

void Conversation::finish(const Exchange& exchange) {
    for (const TarvekMessage& reply : exchange.replies)
        printer_.message(reply);
    if (exchange.state == Exchange::State::Refused) throw ClientError(Failure::Refused, reasonOf(exchange));
}

}  // namespace tvk::client
