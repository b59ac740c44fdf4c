// How long the helper threads of the audio path take for each job, for whoever wants to know.
//
// The product installs no observer; then a timer costs one atomic load and reads no clock.
#pragma once

#include <chrono>

#include "utility/Stopwatch.h"

namespace tvk {

class JobObserver {
public:
    virtual ~JobObserver() = default;

    // thread: the helper's name. wall and processor: what the job took by the wall clock and of processor
    // time. deadline: what it may take. Called on the helper's thread, several of them at once.
    virtual void jobEnded(const char* thread, std::chrono::nanoseconds wall,
                          std::chrono::nanoseconds processor, std::chrono::nanoseconds deadline) = 0;

    // The observer in force, null for none. Call it before helpers start; it outlives them.
    static void install(JobObserver* observer);
};

// Times a job from its construction to its end. Helper threads.
class JobTimer {
public:
    JobTimer(const char* thread, std::chrono::nanoseconds deadline);
    ~JobTimer();
    JobTimer(const JobTimer&) = delete;
    JobTimer& operator=(const JobTimer&) = delete;

private:
    JobObserver* const observer_;
    const char* const thread_;
    const std::chrono::nanoseconds deadline_;
    Stopwatch stopwatch_;
};

}  // namespace tvk
