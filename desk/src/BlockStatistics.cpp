#include "desk/BlockStatistics.h"

namespace tvk::desk {

void BlockStatistics::blockStarts() {
    isTiming_ = card_.isInTransport();
    if (isTiming_) stopwatch_.start();
}

void BlockStatistics::blockEnds() {
    if (!isTiming_) return;
    const std::chrono::nanoseconds wall = stopwatch_.wall();
    times_.add(wall, stopwatch_.processor());
}

}  // namespace tvk::desk
