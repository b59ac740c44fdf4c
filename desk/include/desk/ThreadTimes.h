// What one thread took for each block or job: by the wall clock, and of processor time.
//
// A block that took long by the first and not by the second was interrupted: that is the machine's doing, not
// the engine's. One thread adds, any may read.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

#include "desk/soundcard/Histogram.h"

namespace tvk::desk {

class ThreadTimes {
public:
    // deadline: what a block or job may take.
    explicit ThreadTimes(std::chrono::nanoseconds deadline = {}) : deadline_(deadline) {}

    // Before the first add.
    void setDeadline(std::chrono::nanoseconds deadline) { deadline_ = deadline; }

    void add(std::chrono::nanoseconds wall, std::chrono::nanoseconds processor) {
        wall_.add(wall);
        processor_.add(processor);
        if (wall > deadline_) wallOverruns_.fetch_add(1, std::memory_order_relaxed);
        if (processor > deadline_) processorOverruns_.fetch_add(1, std::memory_order_relaxed);
    }

    std::chrono::nanoseconds deadline() const { return deadline_; }
    const Histogram& wall() const { return wall_; }
    const Histogram& processor() const { return processor_; }

    // Blocks or jobs over the deadline.
    std::uint64_t wallOverruns() const { return wallOverruns_.load(std::memory_order_relaxed); }
    std::uint64_t processorOverruns() const { return processorOverruns_.load(std::memory_order_relaxed); }

private:
    std::chrono::nanoseconds deadline_;
    Histogram wall_;
    Histogram processor_;
    std::atomic<std::uint64_t> wallOverruns_{0};
    std::atomic<std::uint64_t> processorOverruns_{0};
};

}  // namespace tvk::desk
