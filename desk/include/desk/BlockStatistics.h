// How long the audio thread computes at each block: by the wall clock, and by the processor time that it got.
//
// A block that took long by the first and not by the second was interrupted: that is the machine's doing, not
// the engine's.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

#include "desk/soundcard/Histogram.h"
#include "desk/soundcard/VirtualCard.h"
#include "proj/models/audio/BlockTimer.h"

namespace tvk::desk {

class BlockStatistics final : public BlockTimer {
public:
    // deadline: the period's length. The blocks of the card's transport count; the card outlives the object.
    BlockStatistics(const VirtualCard& card, std::chrono::nanoseconds deadline)
        : card_(card), deadline_(deadline) {}

    void blockStarts() override;
    void blockEnds() override;

    std::chrono::nanoseconds deadline() const { return deadline_; }
    const Histogram& wall() const { return wall_; }
    const Histogram& processor() const { return processor_; }

    // Blocks over the deadline.
    std::uint64_t wallOverruns() const { return wallOverruns_.load(std::memory_order_relaxed); }
    std::uint64_t processorOverruns() const { return processorOverruns_.load(std::memory_order_relaxed); }

private:
    const VirtualCard& card_;
    const std::chrono::nanoseconds deadline_;
    bool isTiming_ = false;
    std::chrono::nanoseconds wallStart_{0};
    std::chrono::nanoseconds processorStart_{0};
    Histogram wall_;
    Histogram processor_;
    std::atomic<std::uint64_t> wallOverruns_{0};
    std::atomic<std::uint64_t> processorOverruns_{0};
};

}  // namespace tvk::desk
