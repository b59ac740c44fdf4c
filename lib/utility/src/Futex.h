// A thread's wait for a word of memory to change, by futex(2): other threads of this process alone, woken by
// whoever changed it. Waits end early at times, so the caller looks again.
#pragma once

#include <atomic>
#include <chrono>
#include <ctime>
#include <limits>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tvk::futex {

// While the word is `value`, and no longer than that.
template <typename Word>
void wait(const std::atomic<Word>& word, Word value, std::chrono::nanoseconds atMost) {
    static_assert(sizeof word == 4 && std::atomic<Word>::is_always_lock_free);
    const timespec longest{atMost.count() / 1'000'000'000, atMost.count() % 1'000'000'000};
    syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, &longest);
}

template <typename Word>
void wakeAll(const std::atomic<Word>& word) {
    static_assert(sizeof word == 4 && std::atomic<Word>::is_always_lock_free);
    syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, std::numeric_limits<int>::max());
}

}  // namespace tvk::futex
