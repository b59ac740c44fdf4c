#include "utility/JobTimer.h"

#include <atomic>

namespace tvk {
namespace {

std::atomic<JobObserver*> observerInForce{nullptr};

}  // namespace

void JobObserver::install(JobObserver* observer) {
    observerInForce.store(observer, std::memory_order_release);
}

JobTimer::JobTimer(const char* thread, std::chrono::nanoseconds deadline)
    : observer_(observerInForce.load(std::memory_order_acquire)), thread_(thread), deadline_(deadline) {
    if (observer_) stopwatch_.start();
}

JobTimer::~JobTimer() {
    if (!observer_) return;
    const std::chrono::nanoseconds wall = stopwatch_.wall();
    observer_->jobEnded(thread_, wall, stopwatch_.processor(), deadline_);
}

}  // namespace tvk
