#include "desk/DeskClock.h"

#include <algorithm>

namespace tvk::desk {

int DeskClock::poll(pollfd* descriptors, nfds_t count, std::chrono::milliseconds timeout) {
    using namespace std::chrono_literals;
    const bool isEndless = timeout < 0ms;
    if (!time_.callerIsDriver())
        return ::poll(descriptors, count, isEndless ? -1 : static_cast<int>(timeout.count()));
    const std::chrono::nanoseconds end = time_.now() + timeout;
    while (true) {
        const int ready = ::poll(descriptors, count, 0);
        const std::chrono::nanoseconds left = end - time_.now();
        if (ready != 0 || (!isEndless && left <= 0ns)) return ready;
        time_.sleepFor(isEndless ? 1ms : std::min<std::chrono::nanoseconds>(left, 1ms));
    }
}

}  // namespace tvk::desk
