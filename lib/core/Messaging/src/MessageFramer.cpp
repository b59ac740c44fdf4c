#include "core/Messaging/MessageFramer.h"

#include <algorithm>

#include "utility/Log.h"

namespace tvk {

MessageFramer::MessageFramer(std::size_t maxFrameSize, std::size_t maxMessageSize, CompositionMode mode)
    : maxPayloadSize_(frame::payloadRoom(maxFrameSize)), maxMessageSize_(maxMessageSize) {
    if (mode == CompositionMode::Streaming && maxFrameSize < maxMessageSize)
        TVK_ERROR(
            "Composer is in streaming mode, but max frame size is smaller than max message size. This is "
            "illogical: see MessageComposer::CompositionMode.");
}

Bytes MessageFramer::getFrame(const Bytes& message, std::size_t frameIndex) const {
    if (message.size() > maxMessageSize_) {
        TVK_ERROR("Tried to get frame from a too-large message.");
        return {};
    }
    // Divided, not multiplied: an index may be anything.
    if (maxPayloadSize_ == 0 || message.empty() || frameIndex > (message.size() - 1) / maxPayloadSize_)
        return {};
    const std::size_t offset = maxPayloadSize_ * frameIndex;
    const std::size_t remaining = message.size() - offset;
    const bool isLast = remaining <= maxPayloadSize_;
    const std::size_t payloadSize = std::min(remaining, maxPayloadSize_);

    Bytes frame;
    frame.reserve(frame::kHeaderSize + payloadSize);
    frame.push_back(isLast ? frame::kEndTag : frameIndex == 0 ? frame::kStartTag : frame::kContinueTag);
    frame.push_back(static_cast<std::uint8_t>(payloadSize >> 8));
    frame.push_back(static_cast<std::uint8_t>(payloadSize & 0xFF));
    frame.insert(frame.end(), message.data() + offset, message.data() + offset + payloadSize);
    return frame;
}

}  // namespace tvk
