// The clip latch of the units' level display.
//
// It looks at sample 0 of a block and no other: a block counts as clipped when its first left or right sample
// lies beyond -1 to +1. The latch is set on the audio thread and read and cleared on a control thread.
#pragma once

#include <atomic>

inline void detectClip(std::atomic<bool>& flag, const float* left, const float* right, int length) {
    const auto isBeyondFullScale = [](float sample) { return sample > 1.0f || sample < -1.0f; };
    if (length > 0 && (isBeyondFullScale(left[0]) || isBeyondFullScale(right[0]))) {
        flag.store(true, std::memory_order_relaxed);
    }
}
