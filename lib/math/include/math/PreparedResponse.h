// An impulse response made ready for the three stages of SplitConvolver. Never changes after construction:
// the convolvers of one response share it, and only the first of them pays for its spectra.
//
//   head    samples 0 to K - 1
//   middle  samples K to 2 K - 1, null for a response of up to K samples
//   tail    samples from 2 K on, null for a response of up to 2 K samples
#pragma once

#include <memory>

#include "math/DirectFir.h"
#include "math/PartitionSpectra.h"

struct PreparedResponse {
    // ir: irLength samples. smallBlock: block of the middle; headLength: K, the block of the tail; samples
    // both, K a multiple of smallBlock, otherwise std::invalid_argument.
    PreparedResponse(const float* ir, int irLength, int smallBlock, int headLength);

    int smallBlock;
    int headLength;
    std::shared_ptr<const DirectFirCoefficients> head;
    std::shared_ptr<const PartitionSpectra> middle;
    std::shared_ptr<const PartitionSpectra> tail;
};
