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
    // ir: irLength samples. Throws std::invalid_argument unless tapsOfHead is a multiple of blockOfMiddle.
    PreparedResponse(const float* ir, int irLength, int blockOfMiddle, int tapsOfHead);

    int smallBlock;  // block of the middle in samples
    int headLength;  // K in samples
    std::shared_ptr<const DirectFirCoefficients> head;
    std::shared_ptr<const PartitionSpectra> middle;
    std::shared_ptr<const PartitionSpectra> tail;
};
