// A request on its way from the transport to who carries it out.
#pragma once

#include <cstddef>
#include <memory>

#include "TarvekMessage.pb.h"

namespace tvk {

struct ClientMessage {
    int clientId = 0;
    std::unique_ptr<TarvekMessage> message;
    std::size_t bytes = 0;  // of memory that the message takes
};

// What may wait in one place: a client must not be able to fill the memory.
class ClientMessageLimit {
public:
    static constexpr std::size_t kMaxMessages = 512;
    static constexpr std::size_t kMaxBytes = 4 * 1024 * 1024;

    static constexpr bool hasRoom(std::size_t messages, std::size_t bytes, std::size_t added) {
        return messages < kMaxMessages && bytes + added <= kMaxBytes;
    }
};

}  // namespace tvk
