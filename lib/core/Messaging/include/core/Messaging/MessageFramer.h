// Cuts a message into frames (FrameLayout.h).
//
// Start and continue frames are full, the end frame carries the rest: n bytes become ceil(n / maxPayloadSize)
// frames. Holds no message: any thread.
#pragma once

#include <cstddef>

#include "core/Messaging/Bytes.h"
#include "core/Messaging/FrameLayout.h"

namespace tvk {

class MessageFramer {
public:
    // Sizes in bytes; maxFrameSize includes the header of three. Sizes that cannot work are an error in the
    // log.
    MessageFramer(std::size_t maxFrameSize, std::size_t maxMessageSize, CompositionMode mode);

    // The frame of that index, counted from 0. Empty behind the last frame, and for a message over
    // maxMessageSize, which is an error in the log.
    Bytes getFrame(const Bytes& message, std::size_t frameIndex) const;

    std::size_t getMaxMessageSize() const { return maxMessageSize_; }

private:
    const std::size_t maxPayloadSize_;
    const std::size_t maxMessageSize_;
};

}  // namespace tvk
