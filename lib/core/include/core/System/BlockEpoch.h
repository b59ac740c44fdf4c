// Tells a control thread when the audio thread has left the block it is in.
//
// A counter that is odd while a block runs. Whoever changed what blocks read, and now wants to free what they
// read before, waits out the current block: it naps while one and the same odd value stands. When no audio
// runs the value is even and there is no wait at all.
//
// The counter is sequentially consistent together with the pointer it protects (Runlist): either the editor
// sees the block under way, or the block sees what the editor published.
#pragma once

#include <atomic>

class BlockEpoch {
public:
    // The life of one block on the audio thread.
    class Block {
    public:
        explicit Block(BlockEpoch& epoch) : epoch_(epoch) { epoch_.count_.fetch_add(1); }
        ~Block() { epoch_.count_.fetch_add(1); }
        Block(const Block&) = delete;
        Block& operator=(const Block&) = delete;

    private:
        BlockEpoch& epoch_;
    };

    // Control thread. Returns when the block that was running at the call is over; a block that begins
    // meanwhile does not prolong the wait. Sleeps through tvk::Clock.
    void waitOutCurrentBlock() const;

private:
    std::atomic<unsigned> count_{0};
};
