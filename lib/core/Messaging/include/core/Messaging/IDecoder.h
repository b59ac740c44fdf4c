// Turns bytes into a message.
#pragma once

#include <memory>

#include "core/Messaging/Bytes.h"

namespace tvk {

template <typename Message>
class IDecoder {
public:
    virtual ~IDecoder() = default;

    // Null when it cannot be done; the log says why. Any thread.
    virtual std::unique_ptr<Message> decode(const Bytes* bytes) = 0;
};

}  // namespace tvk
