// Uniformly partitioned FFT convolution by overlap-add: one transform for each block of input, one inverse
// transform for each block of output, and a sum of products of spectra in between (Gardner: Efficient
// Convolution without Input-Output Delay, JAES 1995, section 2).
//
//   block of B -> FFT -> newest of the input spectra
//   sum over k of irSpectra[k] * (spectrum of the block k * stride ago) -> inverse FFT -> overlap-add -> out
//
// The output has no delay of its own: fed in whole blocks, out is the convolution of the same samples. Fed in
// pieces, each piece transforms the incomplete block padded with zeros and gives its own stretch, while the
// sum over the older partitions is made once a block; so whole blocks are what it is cheap for.
//
// A long response does not fit a cache, so a sum over it is as slow as the memory. From 32 partitions of one
// block each on, every eighth block reads all spectra once and makes the sums of eight blocks as far as the
// input is known; the blocks in between add what has come since, at most seven partitions.
//
// It knows nothing of threads: one thread at a time. process does not allocate.
#pragma once

#include <complex>
#include <memory>
#include <optional>
#include <vector>

#include "math/PartitionSpectra.h"
#include "math/fft/AlignedFloats.h"
#include "math/fft/RealFft.h"
#include "math/fft/SpectrumRows.h"

class FFTConv2 {
public:
    // blockSize: B in samples, at least 1. ir: irLength samples, 0 for silence. sampleRate: Hz, for the log
    // alone. Throws std::invalid_argument for a block below 1.
    FFTConv2(int blockSize, const float* ir, int irLength, float sampleRate);

    // On spectra that others use too.
    FFTConv2(std::shared_ptr<const PartitionSpectra> irSpectra, float sampleRate);

    // Takes count samples and adds count samples of the convolution to out. Any count; in and out do not
    // overlap.
    void process(const float* in, float* out, int count);

    // Forgets all input.
    void reset();

    int blockSize() const { return blockSize_; }
    int segmentSize() const { return segmentSize_; }
    int fftSize() const { return fftSize_; }
    int binCount() const { return binCount_; }
    int partitionCount() const { return partitionCount_; }
    int ringSize() const { return ringSize_; }
    float sampleRate() const { return sampleRate_; }

private:
    void checkAlignment() const;
    void sumOlderPartitions();
    void sumAhead();
    template <typename Run>
    void forOlderSlots(int count, Run run);
    void transformInput();
    void addNewestPartition();
    void finishBlock();
    int ringRow(int slot) const;

    const std::shared_ptr<const PartitionSpectra> irSpectra_;
    const int blockSize_;
    const int segmentSize_;
    const float sampleRate_;
    const int fftSize_;
    const int partitionCount_;
    const int ringSize_;
    const int binCount_;
    std::shared_ptr<fft::RealFft> fftConfig_;
    fft::AlignedFloats timeBuffer_;
    std::vector<std::complex<float>, fft::CacheLineAllocator<std::complex<float>>> bins_;
    fft::SpectrumRows accumulator_;           // the older partitions' sum
    std::optional<fft::SpectrumRows> ahead_;  // of eight blocks, from the input before the first of them
    int blockAhead_ = 0;                      // which of the eight comes next
    fft::SpectrumRows tailAccumulator_;       // with the newest spectrum's product
    fft::AlignedFloats overlap_;              // output carried over to later blocks
    fft::AlignedFloats inputBuffer_;
    int inputFill_ = 0;
    int ringIndex_ = 0;  // slot of the newest spectrum
    // Slot j lies in row (j % stride) * partitionCount + j / stride: the slots that one sum walks through are
    // neighbours.
    fft::SpectrumRows inputSpectra_;
};
