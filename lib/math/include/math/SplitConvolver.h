// A long impulse response on a short block without delay, in three stages (Gardner 1995, section 4, with two
// sizes):
//
//   in -+-> head: direct FIR of K taps ------------------------------------------------+-> out
//       +-> middle: FFTConv2, block smallBlock -> middleNext, heard from the next K on -+
//       +-> tail: FFTConv2, block K, on a helper thread -> heard two K later -----------+
//
// The head covers the time that the middle needs, head and middle what the tail needs, so the sum is the
// convolution sample for sample. The helper has K samples of time for each tail block and is never waited
// for.
//
// Whoever owns the object drives the helper: process answers when there is a job, runTail does it.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "math/DirectFir.h"
#include "math/FFTConv2.h"
#include "math/PreparedResponse.h"
#include "math/TailExchange.h"
#include "math/fft/AlignedFloats.h"

class SplitConvolver {
public:
    // The stages of one response with their memory, built on a control thread.
    struct Stages {
        Stages(const std::shared_ptr<const PreparedResponse>& response, int blockSize, float sampleRate);

        DirectFir head;
        std::optional<FFTConv2> middle;
        std::optional<FFTConv2> tail;
    };

    // blockSize: samples of a call to process, at most headLength. smallBlock and headLength: as the
    // responses that will come. name: the helper's. Throws std::invalid_argument for sizes that do not fit.
    SplitConvolver(int blockSize, int smallBlock, int headLength, const std::string& name);

    // Puts other stages in, from silence, and gives the old ones back. Control side, while process is not
    // running and the tail is idle.
    std::unique_ptr<Stages> exchange(std::unique_ptr<Stages> stages);

    // Writes the convolution of blockSize samples to out; in and out do not overlap. True when a tail job has
    // been handed over. Audio thread; needs stages.
    bool process(const float* in, float* out);

    // Runs the tail jobs that are pending. Helper thread.
    void runTail() { tail_.runPending(); }
    tvk::JobBell& tailBell() { return tail_.bell(); }
    bool isTailIdle() const { return tail_.isIdle(); }
    bool hasTail() const { return stages_ && stages_->tail; }

private:
    void addStages(const float* in, float* out, int count);
    void turnHead();

    const int blockSize_;
    const int smallBlock_;
    const int headLength_;
    std::unique_ptr<Stages> stages_;
    TailExchange tail_;
    fft::AlignedFloats middleOut_;
    fft::AlignedFloats middleNext_;
    fft::AlignedFloats input_;
    int position_ = 0;  // samples since the last boundary of K
};
