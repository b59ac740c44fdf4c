#include "desk/DeskClock.h"

#include <algorithm>

#include "desk/soundcard/Quiescence.h"
#include "utility/JobBell.h"

namespace tvk::desk {

namespace {

// For a helper that nobody rings for. Longer than a tick of the kernel: on a virtual machine a timer that
// ends sooner takes longer to set than most jobs to do.
constexpr std::chrono::milliseconds kLongestWaitForAJob{100};

}  // namespace

void DeskClock::nap(std::chrono::nanoseconds duration) {
    const Quiescence::Nap asleep;
    Clock::nap(duration);
}

void DeskClock::awaitJob(JobBell& bell, std::chrono::nanoseconds duration) {
    const Quiescence::Nap asleep;
    bell.await(std::max<std::chrono::nanoseconds>(duration, kLongestWaitForAJob));
}

void DeskClock::threadStarted() {
    Quiescence::threadBound();
    if (starts_ == Starts::AtOnce) return;
    Quiescence others;
    others.leaveOutWhoAwaits();
    others.await();
}

int DeskClock::poll(pollfd* descriptors, nfds_t count, std::chrono::milliseconds timeout) {
    using namespace std::chrono_literals;
    const bool isEndless = timeout < 0ms;
    if (isEndless) return ::poll(descriptors, count, -1);
    int ready = ::poll(descriptors, count, 0);
    if (ready != 0 || timeout == 0ms) return ready;
    const std::chrono::nanoseconds end = time_.now() + timeout;
    time_.sleepUntilWork(1ms, [&] {
        ready = ::poll(descriptors, count, 0);
        return ready != 0 || time_.now() >= end;
    });
    return ready;
}

}  // namespace tvk::desk
