// A unit's hold on a convolver that other units may hold too.
//
// A new preset is built before the old one goes, so for a while two units hold the one convolver, and both
// are processed. It has one history, which only one of them may run: the one that claimed it last.
//
// Threads: attach, claim, release and detach on control threads, one at a time; process on the audio thread.
#pragma once

#include <atomic>
#include <span>
#include <string>

class IRProcessor;

class IRStream {
public:
    // irProcessor: not owned, may be null; it outlives the object or its detach.
    explicit IRStream(IRProcessor* irProcessor = nullptr) : irProcessor_(irProcessor) {}
    ~IRStream() { detach(); }
    IRStream(const IRStream&) = delete;
    IRStream& operator=(const IRStream&) = delete;

    void attach(IRProcessor* irProcessor) { irProcessor_.store(irProcessor, std::memory_order_release); }
    bool isAttached() const { return irProcessor_.load(std::memory_order_relaxed) != nullptr; }

    // Claims the stream, then loads: whoever had it is dry by the time that its response goes. Blocks for the
    // load. False, and the convolver dry, for a file that cannot be used. Needs a convolver.
    bool load(const std::string& path);
    void load(std::span<const float> response);

    // Gives the stream up, if it is this unit's.
    void release();

    // release, and forgets the convolver.
    void detach();

    // One block through the convolver; false, with out untouched, when the stream is not this unit's. Each
    // time that it is found to be another's, one warning. in and out do not overlap.
    bool process(const float* in, float* out, int count);

private:
    std::atomic<IRProcessor*> irProcessor_;
    bool warned_ = false;  // the audio thread's
};
