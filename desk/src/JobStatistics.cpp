#include "desk/JobStatistics.h"

#include <cstring>

namespace tvk::desk {

JobStatistics::JobStatistics(const VirtualCard& card) : card_(card) {
    install(this);
}

void JobStatistics::jobEnded(const char* thread, std::chrono::nanoseconds wall,
                             std::chrono::nanoseconds processor, std::chrono::nanoseconds deadline) {
    if (!card_.isInTransport()) return;
    const std::lock_guard lock(mutex_);
    if (Entry* const entry = find(thread, deadline)) entry->times.add(wall, processor);
}

JobStatistics::Entry* JobStatistics::find(const char* thread, std::chrono::nanoseconds deadline) {
    for (std::size_t i = 0; i < used_; ++i)
        if (std::strcmp(entries_[i].thread.data(), thread) == 0) return &entries_[i];
    if (used_ == kMostThreads) return nullptr;
    Entry& entry = entries_[used_++];
    std::strncpy(entry.thread.data(), thread, entry.thread.size() - 1);
    entry.times.setDeadline(deadline);
    return &entry;
}

void JobStatistics::forEach(
    const std::function<void(const std::string& thread, const ThreadTimes&)>& visit) const {
    const std::lock_guard lock(mutex_);
    for (std::size_t i = 0; i < used_; ++i)
        visit(entries_[i].thread.data(), entries_[i].times);
}

}  // namespace tvk::desk
