// The decoder of protobuf messages.
#pragma once

#include <cstddef>

#include "TarvekMessage/ProtobufLog.h"
#include "core/Messaging/IDecoder.h"
#include "utility/LimitedLog.h"

namespace tvk {

template <typename Message>
class PbDecoder final : public IDecoder<Message> {
public:
    // In bytes, inclusive.
    explicit PbDecoder(std::size_t maxMessageSize) : maxMessageSize_(maxMessageSize) { silenceProtobufLog(); }

    std::unique_ptr<Message> decode(const Bytes* bytes) override {
        if (!bytes) {
            TVK_WARN_LIMITED(log_, "Tried to decode a nullptr message. Returning nullptr.\r\n");
            return nullptr;
        }
        if (bytes->size() > maxMessageSize_) {
            TVK_ERROR_LIMITED(log_, "Tried to decode too large of a message.\r\n");
            return nullptr;
        }
        auto message = std::make_unique<Message>();
        if (!message->ParseFromArray(bytes->data(), static_cast<int>(bytes->size()))) {
            TVK_WARN_LIMITED(log_, "Failed protobuf parse.");
            return nullptr;
        }
        return message;
    }

private:
    const std::size_t maxMessageSize_;
    LimitedLog log_;
};

}  // namespace tvk
