// The convolver of the convolution reverbs: as ReverbConvolver, with its sizes as multiples of the block.
#pragma once

#include <memory>
#include <string>

#include "math/ReverbConvolver.h"

class TwoStageFFTConvolver {
public:
    // blockSize: B, samples of a call to process. smallBlocks, headBlocks: the middle's block and the head in
    // blocks of B, the second a multiple of the first. The others as ReverbConvolver's.
    TwoStageFFTConvolver(int blockSize, const float* ir, int irLength, int unused, int smallBlocks,
                         int headBlocks, int cpu, const std::string& name, float sampleRate);
    TwoStageFFTConvolver(int blockSize, std::shared_ptr<const PreparedResponse> response, int cpu,
                         const std::string& name, float sampleRate);

    void process(const float* in, float* out, int count) { convolver_.process(in, out, count); }
    bool hasHelper() const { return convolver_.hasHelper(); }

private:
    ReverbConvolver convolver_;
};
