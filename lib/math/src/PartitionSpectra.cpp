#include "math/PartitionSpectra.h"

#include <algorithm>
#include <bit>
#include <complex>
#include <stdexcept>

#include "math/fft/RealFft.h"

namespace {

constexpr int kLongestSmallBlock = 128;
constexpr int kSmallestSegment = 16;  // a chunk of the vector kernels

int segmentSizeFor(int blockSize) {
    if (blockSize < 1) throw std::invalid_argument("PartitionSpectra: the block is empty");
    const int needed = (blockSize <= kLongestSmallBlock ? 4 : 2) * blockSize;
    return std::max(kSmallestSegment, static_cast<int>(std::bit_ceil(static_cast<unsigned>(needed))));
}

}  // namespace

PartitionSpectra::PartitionSpectra(int blockSize, const float* ir, int irLength)
    : blockSize_(blockSize),
      segmentSize_(segmentSizeFor(blockSize)),
      stride_(blockSize <= kLongestSmallBlock ? 3 : 1),
      partitionCount_(irLength / partitionLength() + 1),
      filledPartitionCount_((irLength + partitionLength() - 1) / partitionLength()),
      rows_(segmentSize_, partitionCount_ + fft::SpectrumRows::kRowsAhead - 1) {
    fft::RealFft transform(fftSize());
    fft::AlignedFloats time(static_cast<std::size_t>(fftSize()));
    std::vector<std::complex<float>> bins(static_cast<std::size_t>(binCount()));
    for (int k = 0; k < filledPartitionCount_; ++k) {
        const int start = k * partitionLength();
        const int length = std::min(partitionLength(), irLength - start);
        std::copy_n(ir + start, length, time.begin());
        std::fill(time.begin() + length, time.end(), 0.0f);
        transform.forward(time.data(), bins.data());
        rows_.set(k, bins.data());
    }
}
