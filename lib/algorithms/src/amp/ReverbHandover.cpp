#include "algorithms/amp/ReverbHandover.h"

#include <algorithm>
#include <thread>

#include "utility/BackgroundJobs.h"
#include "utility/Log.h"

ReverbHandover::ReverbHandover(int blockLength)
    : reverbIn_(static_cast<std::size_t>(blockLength)), reverbOut_(reverbIn_.size()) {}

ReverbHandover::~ReverbHandover() {
    if (isUnfinished()) tvk::BackgroundJobs::end();
}

bool ReverbHandover::isUnfinished() const {
    return reverbRequest_.load(std::memory_order_acquire) != 0 ||
           reverbDone_.load(std::memory_order_acquire) == 0;
}

void ReverbHandover::exchange(const float* send, float* returned) {
    while (isUnfinished()) {
        TVK_WARN("Reverb buffer not ready");
        // The tank's thread has the audio thread's priority: on a lone processor it runs now.
        std::this_thread::yield();
    }
    std::copy(reverbOut_.begin(), reverbOut_.end(), returned);
    std::copy_n(send, reverbIn_.size(), reverbIn_.begin());
    tvk::BackgroundJobs::begin();
    reverbDone_.store(0, std::memory_order_relaxed);
    reverbRequest_.store(1, std::memory_order_release);
    bell_.ring();
}

bool ReverbHandover::takeRequest() {
    if (reverbRequest_.load(std::memory_order_acquire) == 0) return false;
    reverbDone_.store(0, std::memory_order_relaxed);
    reverbRequest_.store(0, std::memory_order_release);
    return true;
}

void ReverbHandover::finish() {
    reverbDone_.store(1, std::memory_order_release);
    tvk::BackgroundJobs::end();
}
