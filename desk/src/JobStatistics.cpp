#include "desk/JobStatistics.h"

#include <string_view>

namespace tvk::desk {

JobStatistics::JobStatistics(const VirtualCard& card) : card_(card) {
    install(this);
}

void JobStatistics::jobEnded(const char* thread, std::chrono::nanoseconds wall,
                             std::chrono::nanoseconds processor, std::chrono::nanoseconds deadline) {
    if (!card_.isInTransport()) return;
    const std::lock_guard lock(mutex_);
    auto entry = threads_.find(std::string_view(thread));
    if (entry == threads_.end()) {
        if (threads_.size() == kMostThreads) return;
        ThreadTimes* const times = &times_[threads_.size()];
        times->setDeadline(deadline);
        entry = threads_.try_emplace(thread, times).first;
    }
    entry->second->add(wall, processor);
}

void JobStatistics::forEach(
    const std::function<void(const std::string& thread, const ThreadTimes&)>& visit) const {
    const std::lock_guard lock(mutex_);
    for (const auto& [thread, times] : threads_)
        visit(thread, *times);
}

}  // namespace tvk::desk
