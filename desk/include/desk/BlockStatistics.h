// How long the audio thread computes at each block of the card's transport.
#pragma once

#include <chrono>

#include "desk/ThreadTimes.h"
#include "desk/soundcard/VirtualCard.h"
#include "proj/models/audio/BlockTimer.h"
#include "utility/Stopwatch.h"

namespace tvk::desk {

class BlockStatistics final : public BlockTimer {
public:
    // deadline: the period's length. The card outlives the object.
    BlockStatistics(const VirtualCard& card, std::chrono::nanoseconds deadline)
        : card_(card), times_(deadline) {}

    void blockStarts() override;
    void blockEnds() override;

    const ThreadTimes& times() const { return times_; }

private:
    const VirtualCard& card_;
    ThreadTimes times_;
    bool isTiming_ = false;
    Stopwatch stopwatch_;
};

}  // namespace tvk::desk
