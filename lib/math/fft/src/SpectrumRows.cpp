#include "math/fft/SpectrumRows.h"

#include <algorithm>
#include <stdexcept>

#include "math/fft/VectorKernels.h"

namespace fft {
namespace {

constexpr int kChunkBins = 16;

std::size_t checkedFloats(int segmentSize, int rows) {
    if (segmentSize < kChunkBins || segmentSize % kChunkBins != 0 || rows < 1)
        throw std::invalid_argument("SpectrumRows: no rows, or a size that is not a multiple of 16");
    return 2 * static_cast<std::size_t>(segmentSize) * static_cast<std::size_t>(rows);
}

const float* floats(const std::complex<float>* bins) {
    return reinterpret_cast<const float*>(bins);
}

}  // namespace

SpectrumRows::SpectrumRows(int segmentSize, int rows)
    : segmentSize_(segmentSize),
      rows_(rows),
      chunks_(checkedFloats(segmentSize, rows)),
      lastBins_(static_cast<std::size_t>(rows)) {}

void SpectrumRows::set(int row, const std::complex<float>* bins) {
    vectorKernels().binsToChunks(floats(bins), chunk(row), rows_ * kChunkFloats, segmentSize_ / kChunkBins);
    lastBins_[static_cast<std::size_t>(row)] = bins[segmentSize_];
}

void SpectrumRows::get(int row, std::complex<float>* bins) const {
    vectorKernels().chunksToBins(chunk(row), rows_ * kChunkFloats, reinterpret_cast<float*>(bins),
                                 segmentSize_ / kChunkBins);
    bins[segmentSize_] = lastBins_[static_cast<std::size_t>(row)];
}

void SpectrumRows::setToProducts(const SpectrumRows* start, int startRow, const SpectrumRows& a, int aRow,
                                 const SpectrumRows& b, int bRow, int count) {
    vectorKernels().sumProducts(start ? start->chunk(startRow) : nullptr,
                                start ? start->rows_ * kChunkFloats : 0, a.chunk(aRow),
                                a.rows_ * kChunkFloats, b.chunk(bRow), b.rows_ * kChunkFloats, count,
                                chunks_.data(), segmentSize_ / kChunkBins);
    const std::complex<float> first =
        start ? start->lastBins_[static_cast<std::size_t>(startRow)] : std::complex<float>{};
    lastBins_[0] = first + lastBinProducts(a, aRow, b, bRow, count);
}

void SpectrumRows::addProductsAhead(const SpectrumRows& a, int aRow, const SpectrumRows& b, int bRow,
                                    int count) {
    vectorKernels().sumProductsAhead(a.chunk(aRow), a.rows_ * kChunkFloats, b.chunk(bRow),
                                     b.rows_ * kChunkFloats, count, chunks_.data(),
                                     segmentSize_ / kChunkBins);
    for (int m = 0; m < kRowsAhead; ++m)
        lastBins_[static_cast<std::size_t>(m)] += lastBinProducts(a, aRow + m, b, bRow, count);
}

std::complex<float> SpectrumRows::lastBinProducts(const SpectrumRows& a, int aRow, const SpectrumRows& b,
                                                  int bRow, int count) {
    float re = 0.0f;
    float im = 0.0f;
    for (int i = 0; i < count; ++i) {
        const std::complex<float> x = a.lastBins_[static_cast<std::size_t>(aRow + i)];
        const std::complex<float> y = b.lastBins_[static_cast<std::size_t>(bRow + i)];
        re += x.real() * y.real() - x.imag() * y.imag();
        im += x.imag() * y.real() + x.real() * y.imag();
    }
    return {re, im};
}

void SpectrumRows::clear() {
    std::fill(chunks_.begin(), chunks_.end(), 0.0f);
    std::fill(lastBins_.begin(), lastBins_.end(), std::complex<float>{});
}

}  // namespace fft
