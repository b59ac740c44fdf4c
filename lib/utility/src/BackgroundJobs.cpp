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

// All that were ever handed over, modulo its range; helpers wait for it to change.
std::atomic<std::uint32_t> begunJobs{0};
std::atomic<int> waitingHelpers{0};
static_assert(sizeof begunJobs == sizeof(std::uint32_t) && std::atomic<std::uint32_t>::is_always_lock_free);

}  // namespace

void BackgroundJobs::begin() {
    pendingJobs.fetch_add(1, std::memory_order_relaxed);
    // Sequentially consistent on both sides: either the helper sees the job, or it is seen waiting.
    begunJobs.fetch_add(1);
    if (waitingHelpers.load() != 0)
        syscall(SYS_futex, &begunJobs, FUTEX_WAKE_PRIVATE, std::numeric_limits<int>::max());
}

void BackgroundJobs::end(int jobs) {
    if (pendingJobs.fetch_sub(jobs, std::memory_order_release) == jobs) pendingJobs.notify_all();
}

int BackgroundJobs::pending() {
    return pendingJobs.load(std::memory_order_acquire);
}

void BackgroundJobs::waitUntilIdle() {
    while (const int jobs = pending())
        pendingJobs.wait(jobs, std::memory_order_acquire);
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
