#include "utility/BackgroundJobs.h"

#include <atomic>
#include <cstdint>
#include <ctime>
#include <limits>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tvk {
namespace {

std::atomic<int> pendingJobs{0};
std::atomic<int> waitingForIdle{0};

// All that were ever handed over, modulo its range; helpers wait for it to change.
std::atomic<std::uint32_t> handedOverJobs{0};
std::atomic<int> waitingHelpers{0};
static_assert(sizeof handedOverJobs == sizeof(std::uint32_t) &&
              std::atomic<std::uint32_t>::is_always_lock_free);

// Whoever waits for all jobs looks again at the latest then, should a wake-up be lost.
constexpr timespec kLongestBlindness{0, 1'000'000};

void wakeAll(const void* word) {
    syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, std::numeric_limits<int>::max());
}

}  // namespace

void BackgroundJobs::begin() {
    pendingJobs.fetch_add(1, std::memory_order_relaxed);
}

void BackgroundJobs::handedOver() {
    // Sequentially consistent on both sides: either the helper sees the job, or it is seen waiting.
    handedOverJobs.fetch_add(1);
    if (waitingHelpers.load() != 0) wakeAll(&handedOverJobs);
}

void BackgroundJobs::end(int jobs) {
    const bool isLast = pendingJobs.fetch_sub(jobs) == jobs;
    if (isLast && waitingForIdle.load() != 0) wakeAll(&pendingJobs);
}

int BackgroundJobs::pending() {
    return pendingJobs.load(std::memory_order_acquire);
}

void BackgroundJobs::waitUntilIdle() {
    while (const int jobs = pending()) {
        waitingForIdle.fetch_add(1);
        syscall(SYS_futex, &pendingJobs, FUTEX_WAIT_PRIVATE, jobs, &kLongestBlindness);
        waitingForIdle.fetch_sub(1);
    }
}

void BackgroundJobs::awaitHandOver(std::chrono::nanoseconds atMost) {
    thread_local std::uint32_t seen = handedOverJobs.load() - 1;
    const timespec longest{atMost.count() / 1'000'000'000, atMost.count() % 1'000'000'000};
    waitingHelpers.fetch_add(1);
    syscall(SYS_futex, &handedOverJobs, FUTEX_WAIT_PRIVATE, seen, &longest);
    waitingHelpers.fetch_sub(1);
    seen = handedOverJobs.load();
}

}  // namespace tvk
