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
std::atomic<std::uint32_t> begunJobs{0};
std::atomic<int> waitingHelpers{0};
static_assert(sizeof begunJobs == sizeof(std::uint32_t) && std::atomic<std::uint32_t>::is_always_lock_free);

// How long who waits for all jobs goes without a look of its own.
constexpr timespec kLongestBlindness{0, 1'000'000};

void wakeAll(const void* word) {
    syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, std::numeric_limits<int>::max());
}

}  // namespace

void BackgroundJobs::begin() {
    pendingJobs.fetch_add(1, std::memory_order_relaxed);
    // Sequentially consistent on both sides: either the helper sees the job, or it is seen waiting.
    begunJobs.fetch_add(1);
    if (waitingHelpers.load() != 0) wakeAll(&begunJobs);
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

void BackgroundJobs::awaitBegin(std::chrono::nanoseconds atMost) {
    thread_local std::uint32_t seen = begunJobs.load() - 1;
    const timespec longest{atMost.count() / 1'000'000'000, atMost.count() % 1'000'000'000};
    waitingHelpers.fetch_add(1);
    syscall(SYS_futex, &begunJobs, FUTEX_WAIT_PRIVATE, seen, &longest);
    waitingHelpers.fetch_sub(1);
    seen = begunJobs.load();
}

}  // namespace tvk
