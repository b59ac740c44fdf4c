// The encoder of protobuf messages.
#pragma once

#include <cstddef>

#include "core/Messaging/IEncoder.h"
#include "utility/LimitedLog.h"

namespace tvk {

template <typename Message>
class PbEncoder final : public IEncoder<Message> {
public:
    // In bytes, inclusive.
    explicit PbEncoder(std::size_t maxMessageSize) : maxMessageSize_(maxMessageSize) {}

    OwnedBytes encode(const Message* message) override {
        if (!message) {
            TVK_WARN_LIMITED(log_, "Tried to encode a nullptr messagePtr. Returning nullptr. \r\n");
            return nullptr;
        }
        const std::size_t size = message->ByteSizeLong();
        if (size > maxMessageSize_) {
            TVK_WARN_LIMITED(log_, "Tried to encode a messagePtr that would be too large.");
            return nullptr;
        }
        auto bytes = std::make_unique<Bytes>(size);
        if (!message->SerializeToArray(bytes->data(), static_cast<int>(size))) {
            TVK_WARN_LIMITED(log_, "Failed to encode messagePtr.");
            return nullptr;
        }
        return bytes;
    }

private:
    const std::size_t maxMessageSize_;
    LimitedLog log_;
};

}  // namespace tvk
