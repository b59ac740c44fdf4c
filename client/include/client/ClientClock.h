// The time that a session waits in: the machine's, or that of an amplifier on a desk, where time passes only
// when it is asked to.
#pragma once

#include <chrono>

#include "client/Bytes.h"

namespace tvk::client {

class Link;

class ClientClock {
public:
    virtual ~ClientClock() = default;

    // Since an arbitrary start; never goes back.
    virtual std::chrono::nanoseconds now() = 0;

    // Whether time goes on while nobody waits in it.
    virtual bool runsByItself() const = 0;

    // Waits at most that long for a report. False when none came; that may be a little before the limit.
    virtual bool receive(Link& link, Report& report, std::chrono::milliseconds limit) = 0;
};

}  // namespace tvk::client
