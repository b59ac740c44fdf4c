#include "core/Messaging/FrameLayout.h"

#include <algorithm>

#include "utility/Log.h"

namespace tvk::frame {

std::size_t payloadRoom(std::size_t maxFrameSize) {
    const std::size_t room = maxFrameSize - std::min(maxFrameSize, kHeaderSize);
    if (room > kLargestPayload) TVK_ERROR("Max payload size too large to fit into 16-bit payloadSize field");
    return std::min(room, kLargestPayload);
}

}  // namespace tvk::frame
