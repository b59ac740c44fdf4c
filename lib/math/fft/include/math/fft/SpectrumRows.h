// Spectra of equal size, stored for sums of products over many of them.
//
// The bins are cut into chunks of 16. A chunk holds its piece of every row one after the other, real parts
// before imaginary parts:
//
//   chunk 0: row 0 [re 0..15][im 0..15], row 1 [re 0..15][im 0..15], ...   chunk 1: row 0 [re 16..31] ...
//
// so that a sum over rows keeps one chunk of sums in registers while both factors stream by from start to
// end. The last bin (half the sample rate) is a complex pair of its own for each row.
#pragma once

#include <complex>

#include "math/fft/AlignedFloats.h"

namespace fft {

class SpectrumRows {
public:
    // segmentSize: S, a multiple of 16; a row has S + 1 bins. All rows are zero.
    SpectrumRows(int segmentSize, int rows);

    // Stores a row. bins: S + 1 values.
    void set(int row, const std::complex<float>* bins);

    // Reads a row back.
    void get(int row, std::complex<float>* bins) const;

    // This one row becomes start[startRow] + sum over i < count of a[aRow + i] * b[bRow + i], bin by bin. All
    // have the same S; start may be this object, and null stands for zero.
    void setToProducts(const SpectrumRows* start, int startRow, const SpectrumRows& a, int aRow,
                       const SpectrumRows& b, int bRow, int count);

    // Adds to each of these eight rows m the sum over i < count of a[aRow + i + m] * b[bRow + i]. a has the
    // rows for it.
    void addProductsAhead(const SpectrumRows& a, int aRow, const SpectrumRows& b, int bRow, int count);
    static constexpr int kRowsAhead = 8;

    // All rows zero.
    void clear();

    int segmentSize() const { return segmentSize_; }
    int rows() const { return rows_; }
    const float* data() const { return chunks_.data(); }

private:
    static std::complex<float> lastBinProducts(const SpectrumRows& a, int aRow, const SpectrumRows& b,
                                               int bRow, int count);
    float* chunk(int row) { return chunks_.data() + row * kChunkFloats; }
    const float* chunk(int row) const { return chunks_.data() + row * kChunkFloats; }

    static constexpr int kChunkFloats = 32;

    int segmentSize_;
    int rows_;
    AlignedFloats chunks_;
    std::vector<std::complex<float>> lastBins_;
};

}  // namespace fft
