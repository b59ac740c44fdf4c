#include "utility/JobBell.h"

#include "Futex.h"

namespace tvk {

void JobBell::ring() {
    // Sequentially consistent on both sides: either the helper sees the job, or it is seen waiting.
    rung_.fetch_add(1);
    if (isAwaited_.load()) futex::wakeAll(rung_);
}

void JobBell::await(std::chrono::nanoseconds atMost) {
    isAwaited_.store(true);
    futex::wait(rung_, heard_, atMost);
    isAwaited_.store(false);
    heard_ = rung_.load();
}

}  // namespace tvk
