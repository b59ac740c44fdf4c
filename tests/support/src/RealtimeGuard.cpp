#include "support/RealtimeGuard.h"

#include <atomic>

#include "RealtimeWatch.h"
#include "utility/RealtimeThread.h"

namespace realtimewatch {

namespace {

std::atomic<bool> armed{false};
std::atomic<long> counts[kKinds];

}  // namespace

void report(Kind kind) {
    if (armed.load(std::memory_order_relaxed) && tvk::RealtimeThreadScope::isMarked())
        counts[kind].fetch_add(1, std::memory_order_relaxed);
}

}  // namespace realtimewatch

RealtimeGuard::RealtimeGuard() {
    for (auto& count : realtimewatch::counts)
        count.store(0);
    realtimewatch::install();
    realtimewatch::armed.store(true);
}

RealtimeGuard::~RealtimeGuard() {
    realtimewatch::armed.store(false);
}

RealtimeGuard::Violations RealtimeGuard::violations() const {
    using namespace realtimewatch;
    return {counts[kAllocation].load(), counts[kFree].load(), counts[kLock].load(),
            counts[kSystemCall].load()};
}

std::ostream& operator<<(std::ostream& out, const RealtimeGuard::Violations& v) {
    return out << v.allocations << " allocations, " << v.frees << " frees, " << v.locks << " locks, "
               << v.systemCalls << " system calls";
}
