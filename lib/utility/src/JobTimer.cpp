#include "utility/JobTimer.h"

#include <atomic>
#include <ctime>

namespace tvk {
namespace {

std::atomic<JobObserver*> observerInForce{nullptr};

std::chrono::nanoseconds read(clockid_t clock) {
    timespec t{};
    clock_gettime(clock, &t);
    return std::chrono::seconds(t.tv_sec) + std::chrono::nanoseconds(t.tv_nsec);
}

}  // namespace

void JobObserver::install(JobObserver* observer) {
    observerInForce.store(observer, std::memory_order_release);
}

JobTimer::JobTimer(const char* thread, std::chrono::nanoseconds deadline)
    : observer_(observerInForce.load(std::memory_order_acquire)), thread_(thread), deadline_(deadline) {
    if (!observer_) return;
    processorStart_ = read(CLOCK_THREAD_CPUTIME_ID);
    wallStart_ = read(CLOCK_MONOTONIC);
}

JobTimer::~JobTimer() {
    if (!observer_) return;
    const std::chrono::nanoseconds wall = read(CLOCK_MONOTONIC) - wallStart_;
    observer_->jobEnded(thread_, wall, read(CLOCK_THREAD_CPUTIME_ID) - processorStart_, deadline_);
}

}  // namespace tvk
