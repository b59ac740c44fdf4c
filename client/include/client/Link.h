// A way for reports to reach the amplifier and come from it, whatever carries them.
//
// One thread at a time. Both calls throw ClientError (NoLink) once the other end is gone.
#pragma once

#include <chrono>

#include "client/Bytes.h"

namespace tvk::client {

class Link {
public:
    virtual ~Link() = default;

    // False when the link has no room just now; nothing is sent then. Does not wait for room.
    virtual bool send(const Report& report) = 0;

    // The next report that comes within that time, in the machine's time; zero only looks. False when none
    // did. What is no report of this protocol's size is dropped.
    virtual bool receive(Report& report, std::chrono::milliseconds limit) = 0;
};

}  // namespace tvk::client
