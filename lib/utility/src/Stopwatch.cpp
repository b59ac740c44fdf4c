#include "utility/Stopwatch.h"

#include <ctime>

namespace tvk {
namespace {

std::chrono::nanoseconds read(clockid_t clock) {
    timespec t{};
    clock_gettime(clock, &t);
    return std::chrono::seconds(t.tv_sec) + std::chrono::nanoseconds(t.tv_nsec);
}

}  // namespace

void Stopwatch::start() {
    processorStart_ = read(CLOCK_THREAD_CPUTIME_ID);
    wallStart_ = read(CLOCK_MONOTONIC);
}

std::chrono::nanoseconds Stopwatch::wall() const {
    return read(CLOCK_MONOTONIC) - wallStart_;
}

std::chrono::nanoseconds Stopwatch::processor() const {
    return read(CLOCK_THREAD_CPUTIME_ID) - processorStart_;
}

}  // namespace tvk
