// How long the helper threads take for each job of the card's transport, thread by thread: the tank, the
// tails of the convolvers.
#pragma once

#include <array>
#include <functional>
#include <mutex>
#include <string>

#include "desk/ThreadTimes.h"
#include "desk/soundcard/VirtualCard.h"
#include "utility/JobTimer.h"

namespace tvk::desk {

class JobStatistics final : public JobObserver {
public:
    static constexpr std::size_t kMostThreads = 8;

    // Observes from here on, to its end; the card outlives the object, the helpers do not.
    explicit JobStatistics(const VirtualCard& card);
    ~JobStatistics() override { install(nullptr); }

    void jobEnded(const char* thread, std::chrono::nanoseconds wall, std::chrono::nanoseconds processor,
                  std::chrono::nanoseconds deadline) override;

    // Visits every thread that ran a job, the first kMostThreads of them. Any thread.
    void forEach(const std::function<void(const std::string& thread, const ThreadTimes&)>& visit) const;

private:
    // Made beforehand, so that watching a thread neither allocates on it nor touches new pages there.
    struct Entry {
        std::array<char, 16> thread{};  // a thread's name has at most 15 characters
        ThreadTimes times;
    };
    Entry* find(const char* thread, std::chrono::nanoseconds deadline);

    const VirtualCard& card_;
    mutable std::mutex mutex_;
    std::array<Entry, kMostThreads> entries_;
    std::size_t used_ = 0;
};

}  // namespace tvk::desk
