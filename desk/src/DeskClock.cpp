#include "desk/DeskClock.h"

#include <algorithm>

#include "desk/soundcard/Quiescence.h"
#include "utility/BackgroundJobs.h"

namespace tvk::desk {

namespace {

// Two threads that start others at once would wait for each other.
constexpr std::chrono::milliseconds kLongestStart{200};

// A helper that looked for work all the time would take the processor from those that time waits for.
constexpr std::chrono::milliseconds kLongestWaitForAJob{1};

}  // namespace

void DeskClock::nap(std::chrono::nanoseconds duration) {
    const Quiescence::Nap asleep;
    Clock::nap(duration);
}

void DeskClock::awaitJob(std::chrono::nanoseconds duration) {
    const Quiescence::Nap asleep;
    BackgroundJobs::awaitHandOver(std::max<std::chrono::nanoseconds>(duration, kLongestWaitForAJob));
}

void DeskClock::threadStarted() {
    Quiescence others;
    others.leaveOut(time_.audioThread());
    others.await(kLongestStart);
}

int DeskClock::poll(pollfd* descriptors, nfds_t count, std::chrono::milliseconds timeout) {
    using namespace std::chrono_literals;
    const bool isEndless = timeout < 0ms;
    if (isEndless) return ::poll(descriptors, count, -1);
    const std::chrono::nanoseconds end = time_.now() + timeout;
    while (true) {
        const int ready = ::poll(descriptors, count, 0);
        const std::chrono::nanoseconds left = end - time_.now();
        if (ready != 0 || left <= 0ns) return ready;
        time_.sleepFor(std::min<std::chrono::nanoseconds>(left, 1ms));
    }
}

}  // namespace tvk::desk
