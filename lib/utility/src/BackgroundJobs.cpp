#include "utility/BackgroundJobs.h"

#include <atomic>
#include <chrono>

#include "Futex.h"

namespace tvk {
namespace {

std::atomic<int> pendingJobs{0};
std::atomic<int> waitingForIdle{0};

// Whoever waits for all jobs looks again at the latest then, should a wake-up be lost.
constexpr std::chrono::milliseconds kLongestBlindness{1};

}  // namespace

void BackgroundJobs::begin() {
    pendingJobs.fetch_add(1, std::memory_order_relaxed);
}

void BackgroundJobs::end(int jobs) {
    const bool isLast = pendingJobs.fetch_sub(jobs) == jobs;
    if (isLast && waitingForIdle.load() != 0) futex::wakeAll(pendingJobs);
}

int BackgroundJobs::pending() {
    return pendingJobs.load(std::memory_order_acquire);
}

void BackgroundJobs::waitUntilIdle() {
    while (const int jobs = pending()) {
        waitingForIdle.fetch_add(1);
        futex::wait(pendingJobs, jobs, kLongestBlindness);
        waitingForIdle.fetch_sub(1);
    }
}

}  // namespace tvk
