// Whose signal runs through a convolver that several units hold.
//
// A new preset is built before the old one goes, so for a while two units hold the one convolver, and both
// are processed. It has one history: only one of them may run it. The unit that asked for a response last
// owns the stream.
//
// Threads: claim and release on control threads, isOwner on the audio thread.
#pragma once

#include <atomic>

class IRStreamOwner {
public:
    // The unit owns the stream from now on; it is an identity and never followed.
    void claim(const void* unit) { owner_.store(unit, std::memory_order_release); }

    // Gives the stream up, if it is the unit's.
    void release(const void* unit) {
        owner_.compare_exchange_strong(unit, nullptr, std::memory_order_acq_rel);
    }

    bool isOwner(const void* unit) const { return owner_.load(std::memory_order_acquire) == unit; }

private:
    std::atomic<const void*> owner_{nullptr};
};
