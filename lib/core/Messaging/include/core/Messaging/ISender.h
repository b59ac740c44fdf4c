// Puts frames on a link, one at a time, without waiting.
#pragma once

#include <cstddef>

#include "core/Messaging/Bytes.h"
#include "core/Messaging/TransportStatus.h"

namespace tvk {

class ISender {
public:
    virtual ~ISender() = default;

    // The frame may be changed. All of it is sent, or none; a null frame is an error.
    virtual TransportStatus send(Bytes* frame) = 0;

    // In bytes.
    virtual std::size_t getMaxFrameSize() const = 0;
};

}  // namespace tvk
