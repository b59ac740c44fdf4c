#include "utility/Clock.h"

#include <atomic>
#include <cerrno>
#include <ctime>

namespace tvk {

namespace {

void sleepInMachineTime(std::chrono::nanoseconds duration) {
    if (duration <= std::chrono::nanoseconds::zero()) return;
    timespec remaining{};
    remaining.tv_sec = duration.count() / 1000000000;
    remaining.tv_nsec = duration.count() % 1000000000;
    while (nanosleep(&remaining, &remaining) == -1 && errno == EINTR) {
    }
}

class MachineClock : public Clock {
public:
    std::chrono::nanoseconds now() override {
        timespec t{};
        clock_gettime(CLOCK_MONOTONIC, &t);
        return std::chrono::seconds(t.tv_sec) + std::chrono::nanoseconds(t.tv_nsec);
    }

    void sleepFor(std::chrono::nanoseconds duration) override { sleepInMachineTime(duration); }

    int poll(pollfd* descriptors, nfds_t count, std::chrono::milliseconds timeout) override {
        return ::poll(descriptors, count, timeout.count() < 0 ? -1 : static_cast<int>(timeout.count()));
    }
};

MachineClock machineClock;
std::atomic<Clock*> installed{&machineClock};

}  // namespace

void Clock::nap(std::chrono::nanoseconds duration) {
    sleepInMachineTime(duration);
}

Clock& Clock::current() {
    return *installed.load(std::memory_order_acquire);
}

void Clock::install(Clock* clock) {
    installed.store(clock ? clock : &machineClock, std::memory_order_release);
}

}  // namespace tvk
