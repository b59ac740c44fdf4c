// Takes frames from a link and holds them until they are asked for.
#pragma once

#include <cstddef>

#include "core/Messaging/Bytes.h"
#include "core/Messaging/TransportStatus.h"

namespace tvk {

class IReceiver {
public:
    virtual ~IReceiver() = default;

    // Takes at most one frame from the link. Success says that one came.
    virtual TransportStatus receive() = 0;

    // Whether receive would find something to do; true where that cannot be told. Asked on another thread
    // only while the receiver's own sleeps.
    virtual bool hasInput() const { return true; }

    // The oldest frame that was received, with its padding; null when there is none.
    virtual OwnedBytes pop() = 0;

    // Throws away what the link holds.
    virtual void flush() = 0;

    // In bytes.
    virtual std::size_t getMaxFrameSize() const = 0;
};

}  // namespace tvk
