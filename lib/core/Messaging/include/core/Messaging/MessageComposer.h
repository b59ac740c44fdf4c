// Glues frames (FrameLayout.h) back into messages.
//
// Whatever comes in, a rejected frame is a line in the log, drops the partly assembled message and leaves the
// composer ready for the first frame of the next one. One thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

#include "core/Messaging/Bytes.h"
#include "core/Messaging/FrameLayout.h"
#include "utility/LimitedLog.h"

namespace tvk {

class MessageComposer {
public:
    // Sizes in bytes; maxFrameSize includes the header of three.
    MessageComposer(std::size_t maxFrameSize, std::size_t maxMessageSize, CompositionMode mode);

    // One frame with or without padding, or, in streaming mode, the next bytes of the stream. True when a
    // message was finished by it.
    bool addFrame(const Bytes& frame);

    bool messageWaiting() const { return !messages_.empty(); }

    // The oldest finished message, null when none waits.
    OwnedBytes popMessage();

    // Drops the partly assembled message and the finished ones.
    void reset();

private:
    bool addWholeFrame(const Bytes& frame);
    bool isFrameGood(const Bytes& frame, std::uint8_t tag, std::size_t payloadSize);
    bool addByte(std::uint8_t byte, std::size_t dataSize);
    bool isSizeGood();
    bool reject();
    bool finishMessage();

    const std::size_t maxFrameSize_;
    const std::size_t maxPayloadSize_;
    const std::size_t maxMessageSize_;
    const CompositionMode mode_;
    LimitedLog log_;
    Bytes assembly_;                      // maxMessageSize bytes
    std::size_t assembledSize_ = 0;       // bytes of the message that lie in it
    std::uint16_t compositionIndex_ = 0;  // streaming: position in the frame, header included
    std::size_t payloadSize_ = 0;         // of the current frame
    std::deque<OwnedBytes> messages_;
};

}  // namespace tvk
