// What came of one attempt to send or to receive.
#pragma once

namespace tvk {

enum class TransportStatus {
    Error = 0,
    Success = 1,
    NothingDone = 2,  // it would block, or there is nothing to read
    DeviceGone = 3
};

}  // namespace tvk
