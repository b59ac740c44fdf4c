#include "desk/BlockStatistics.h"

#include <ctime>

namespace tvk::desk {

namespace {

std::chrono::nanoseconds read(clockid_t clock) {
    timespec t{};
    clock_gettime(clock, &t);
    return std::chrono::seconds(t.tv_sec) + std::chrono::nanoseconds(t.tv_nsec);
}

}  // namespace

void BlockStatistics::blockStarts() {
    isTiming_ = card_.isInTransport();
    if (!isTiming_) return;
    processorStart_ = read(CLOCK_THREAD_CPUTIME_ID);
    wallStart_ = read(CLOCK_MONOTONIC);
}

void BlockStatistics::blockEnds() {
    if (!isTiming_) return;
    const std::chrono::nanoseconds wall = read(CLOCK_MONOTONIC) - wallStart_;
    const std::chrono::nanoseconds processor = read(CLOCK_THREAD_CPUTIME_ID) - processorStart_;
    times_.add(wall, processor);
}

}  // namespace tvk::desk
