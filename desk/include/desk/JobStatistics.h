// How long the helper threads take for each job of the card's transport, thread by thread: the tank, the
// tails of the convolvers.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <mutex>
#include <string>

#include "desk/ThreadTimes.h"
#include "desk/soundcard/VirtualCard.h"
#include "utility/JobTimer.h"

namespace tvk::desk {

class JobStatistics final : public JobObserver {
public:
    // Observes from here on, to its end; the card outlives the object, the helpers do not.
    explicit JobStatistics(const VirtualCard& card);
    ~JobStatistics() override { install(nullptr); }

    void jobEnded(const char* thread, std::chrono::nanoseconds wall, std::chrono::nanoseconds processor,
                  std::chrono::nanoseconds deadline) override;

    // Visits every thread that ran a job, the first kMostThreads of them, in the order of names. Any thread.
    void forEach(const std::function<void(const std::string& thread, const ThreadTimes&)>& visit) const;

private:
    const VirtualCard& card_;
    mutable std::mutex mutex_;
    std::map<std::string, ThreadTimes*, std::less<>> threads_;
    // Made beforehand, so that their pages are not first touched by the threads that they watch.
    static constexpr std::size_t kMostThreads = 8;
    std::array<ThreadTimes, kMostThreads> times_;
};

}  // namespace tvk::desk
