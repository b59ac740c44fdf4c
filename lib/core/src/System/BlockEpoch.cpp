#include "core/System/BlockEpoch.h"

#include <chrono>

#include "utility/Clock.h"

void BlockEpoch::waitOutCurrentBlock() const {
    // A tenth of a 32-frame period: short beside a block, long beside a wake-up.
    constexpr std::chrono::microseconds kNap{75};
    const unsigned atCall = count_.load();
    const bool isBlockRunning = atCall % 2 != 0;
    while (isBlockRunning && count_.load() == atCall)
        tvk::Clock::current().sleepFor(kNap);
}
