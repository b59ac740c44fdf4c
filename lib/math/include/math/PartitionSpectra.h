// The spectra of an impulse response cut into equal partitions, as FFTConv2 multiplies them. Never changes
// after construction, so that any number of convolvers, on any threads, share one copy.
//
// Sizes, for a block of B samples:
//   T = 4 B for B up to 128, else 2 B
//   S = smallest power of two at or above T, at least 16       segmentSize
//   N = 2 S                                                    fftSize
//   stride = 3 for B up to 128, else 1                         blocks of input that a partition spans
//   L = stride * B samples of the response in each partition   (S - B when B is a power of two)
//   P = irLength / L + 1, in integer division                  partitionCount
#pragma once

#include "math/fft/SpectrumRows.h"

class PartitionSpectra {
public:
    // blockSize: B in samples, at least 1, otherwise std::invalid_argument. ir: irLength samples, read only
    // here. An empty response has one partition, of silence.
    PartitionSpectra(int blockSize, const float* ir, int irLength);

    int blockSize() const { return blockSize_; }
    int segmentSize() const { return segmentSize_; }
    int fftSize() const { return 2 * segmentSize_; }
    int binCount() const { return segmentSize_ + 1; }
    int stride() const { return stride_; }
    int partitionLength() const { return stride_ * blockSize_; }
    int partitionCount() const { return partitionCount_; }
    // Partitions that hold samples of the response; those behind them are zero.
    int filledPartitionCount() const { return filledPartitionCount_; }

    // One row for each partition, and behind them rows of zeros for sums that run ahead of their block.
    const fft::SpectrumRows& rows() const { return rows_; }

private:
    const int blockSize_;
    const int segmentSize_;
    const int stride_;
    const int partitionCount_;
    const int filledPartitionCount_;
    fft::SpectrumRows rows_;
};
