// Which messages of the amplifier answer a request.
//
// Requests carry no number; what belongs to what follows from the kinds of the messages, from what an echo
// repeats of its request, and from the order, since the amplifier answers in the order of the requests.
#pragma once

#include "TarvekMessage.pb.h"

namespace tvk::client {

class Expectation {
public:
    enum class Verdict {
        Foreign,  // belongs to another request, or to none
        Part,     // belongs to this one, and more will come
        Done,     // the last of the answer
        Refused   // the last of the answer, which is no
    };

    explicit Expectation(const TarvekMessage& request);

    // False for what the amplifier says nothing to: heartbeats, and messages that it does not take.
    bool isReplyDue() const;

    Verdict consider(const TarvekMessage& message);

private:
    bool isReply(const TarvekMessage& message) const;
    bool isRefusal(const TarvekMessage& message) const;
    Verdict considerConnection(const ConnectionMessage& message) const;

    TarvekMessage request_;
    bool isAnswered_ = false;  // and the list of the cabinet slots that follows has still to come
};

}  // namespace tvk::client
