// Turns a message into bytes.
#pragma once

#include "core/Messaging/Bytes.h"

namespace tvk {

template <typename Message>
class IEncoder {
public:
    virtual ~IEncoder() = default;

    // Null when it cannot be done; the log says why. Any thread.
    virtual OwnedBytes encode(const Message* message) = 0;
};

}  // namespace tvk
