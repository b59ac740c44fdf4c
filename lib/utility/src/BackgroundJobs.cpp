#include "utility/BackgroundJobs.h"

#include <atomic>
#include <chrono>

#include "utility/Clock.h"

namespace tvk {
namespace {

constexpr std::chrono::microseconds kLookPeriod{20};

std::atomic<int> pendingJobs{0};

}  // namespace

void BackgroundJobs::begin() {
    pendingJobs.fetch_add(1, std::memory_order_relaxed);
}

void BackgroundJobs::end(int jobs) {
    pendingJobs.fetch_sub(jobs, std::memory_order_release);
}

int BackgroundJobs::pending() {
    return pendingJobs.load(std::memory_order_acquire);
}

void BackgroundJobs::waitUntilIdle() {
    while (pending() != 0)
        Clock::current().nap(kLookPeriod);
}

}  // namespace tvk
