#include <complex>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

#include "math/fft/SpectrumRows.h"
#include "math/fft/VectorKernels.h"
#include "support/WhiteNoise.h"

namespace {

using Bins = std::vector<std::complex<float>>;

class SpectrumKernels : public testing::TestWithParam<bool> {
protected:
    const fft::VectorKernels& kernels() const {
        return GetParam() ? fft::vectorKernels() : fft::portableVectorKernels();
    }
};

INSTANTIATE_TEST_SUITE_P(Sets, SpectrumKernels, testing::Bool(),
                         [](const auto& set) { return set.param ? "Fastest" : "Portable"; });

Bins noiseBins(int count, unsigned seed) {
    const auto parts = whiteNoise(2 * count, seed);
    Bins bins;
    for (int i = 0; i < count; ++i)
        bins.emplace_back(parts[2 * i], parts[2 * i + 1]);
    return bins;
}

float* floats(Bins& bins) {
    return reinterpret_cast<float*>(bins.data());
}

TEST_P(SpectrumKernels, LongFirIsTheDirectSumForEveryCount) {
    for (const int taps : {32, 64, 128, 2048}) {
        for (const int count : {8, 16, 24, 32, 40, 64, 72, 128}) {
            const auto in = whiteNoise(taps - 1 + count, 1);
            const auto coefficients = whiteNoise(taps, 2);
            std::vector<float> out(static_cast<std::size_t>(count + 1), 7.0f);
            kernels().longFir(in.data(), coefficients.data(), taps, out.data(), count);
            for (int n = 0; n < count; ++n) {
                double truth = 0.0;
                for (int j = 0; j < taps; ++j)
                    truth += double{coefficients.at(j)} * in.at(n + j);
                EXPECT_NEAR(out[n], truth, 1e-6 * taps) << taps << ' ' << count << ' ' << n;
            }
            EXPECT_EQ(out.back(), 7.0f) << "written behind the end";
        }
    }
}

TEST_P(SpectrumKernels, ChunksHoldRealPartsBeforeImaginaryPartsAndGiveTheBinsBack) {
    for (const int chunks : {1, 2, 5}) {
        const int stride = 32 * 3;
        Bins bins = noiseBins(16 * chunks, 3);
        std::vector<float> rows(static_cast<std::size_t>(chunks * stride), 7.0f);
        kernels().binsToChunks(floats(bins), rows.data() + 32, stride, chunks);
        for (int c = 0; c < chunks; ++c) {
            for (int i = 0; i < 16; ++i) {
                EXPECT_EQ(rows[c * stride + 32 + i], bins[16 * c + i].real());
                EXPECT_EQ(rows[c * stride + 48 + i], bins[16 * c + i].imag());
                EXPECT_EQ(rows[c * stride + i], 7.0f) << "another row";
                EXPECT_EQ(rows[c * stride + 64 + i], 7.0f) << "another row";
            }
        }
        Bins back(bins.size());
        kernels().chunksToBins(rows.data() + 32, stride, floats(back), chunks);
        EXPECT_EQ(back, bins);
    }
}

TEST_P(SpectrumKernels, SumsOfProductsAreComplexBinByBin) {
    constexpr int kChunks = 3;
    constexpr int kStrideA = 32 * 9;
    constexpr int kStrideB = 32 * 11;
    const auto a = whiteNoise(kChunks * kStrideA, 4);
    const auto b = whiteNoise(kChunks * kStrideB, 5);
    const auto start = whiteNoise(kChunks * 32, 6);
    const auto bin = [](const std::vector<float>& rows, int at, int i) {
        return std::complex<double>(rows.at(at + i), rows.at(at + 16 + i));
    };
    for (int rows = 0; rows <= 9; ++rows) {
        for (const bool hasStart : {false, true}) {
            std::vector<float> sum = start;  // the sum may take the place of its start
            kernels().sumProducts(hasStart ? sum.data() : nullptr, 32, a.data(), kStrideA, b.data(), kStrideB,
                                  rows, sum.data(), kChunks);
            for (int c = 0; c < kChunks; ++c) {
                for (int i = 0; i < 16; ++i) {
                    std::complex<double> truth = hasStart ? bin(start, 32 * c, i) : 0.0;
                    for (int r = 0; r < rows; ++r)
                        truth += bin(a, c * kStrideA + 32 * r, i) * bin(b, c * kStrideB + 32 * r, i);
                    EXPECT_LE(std::abs(bin(sum, 32 * c, i) - truth), 3e-6) << rows << ' ' << c << ' ' << i;
                }
            }
        }
    }
}

TEST_P(SpectrumKernels, SumsAheadMeetTheRowsOfTheFirstFactorOneFurtherOnEach) {
    constexpr int kChunks = 3;
    constexpr int kStrideA = 32 * 14;
    constexpr int kStrideB = 32 * 8;
    const auto a = whiteNoise(kChunks * kStrideA, 30);
    const auto b = whiteNoise(kChunks * kStrideB, 31);
    const auto start = whiteNoise(kChunks * 8 * 32, 32);
    const auto bin = [](const std::vector<float>& rows, int at, int i) {
        return std::complex<double>(rows.at(at + i), rows.at(at + 16 + i));
    };
    for (int rows = 0; rows <= 7; ++rows) {
        std::vector<float> sums = start;
        kernels().sumProductsAhead(a.data(), kStrideA, b.data(), kStrideB, rows, sums.data(), kChunks);
        for (int c = 0; c < kChunks; ++c) {
            for (int m = 0; m < 8; ++m) {
                for (int i = 0; i < 16; ++i) {
                    std::complex<double> truth = bin(start, (8 * c + m) * 32, i);
                    for (int r = 0; r < rows; ++r)
                        truth += bin(a, c * kStrideA + 32 * (r + m), i) * bin(b, c * kStrideB + 32 * r, i);
                    EXPECT_LE(std::abs(bin(sums, (8 * c + m) * 32, i) - truth), 3e-6) << rows << ' ' << m;
                }
            }
        }
    }
}

// For z the transform of x[2n] + i x[2n+1], e is that of the even samples and d = w^k times that of the odd
// ones, so the butterfly makes the real transform of x.
TEST_P(SpectrumKernels, ButterflyJoinsEvenAndOddSamplesIntoTheRealTransform) {
    for (const int half : {8, 16, 64}) {
        const auto x = whiteNoise(2 * half, 7);
        const auto turn = [](double turns) { return std::polar(1.0, -2.0 * std::numbers::pi * turns); };
        Bins bins(static_cast<std::size_t>(half + 1));
        for (int k = 0; k <= half; ++k) {
            std::complex<double> z = 0.0;
            for (int n = 0; n < half; ++n)
                z += std::complex<double>(x[2 * n], x[2 * n + 1]) * turn(double(k * n % half) / half);
            bins[k] = std::complex<float>(z);
        }
        Bins twiddles;
        for (int k = 0; k < half / 2; ++k)
            twiddles.emplace_back(std::complex<double>(0.0, -0.5) * turn(double(k) / (2 * half)));
        kernels().realButterfly(floats(bins), floats(twiddles), 0.5f, half);
        for (int k = 0; k <= half; ++k) {
            std::complex<double> truth = 0.0;
            for (int n = 0; n < 2 * half; ++n)
                truth += double{x[n]} * turn(double(k * n % (2 * half)) / (2 * half));
            EXPECT_LE(std::abs(std::complex<double>(bins[k]) - truth), 1e-5) << half << ' ' << k;
        }
    }
}

TEST(SpectrumRows, ARowComesBackAsItWasStoredAndItsNeighboursStay) {
    fft::SpectrumRows rows(48, 3);
    const Bins middle = noiseBins(49, 8);
    const Bins last = noiseBins(49, 9);
    rows.set(1, middle.data());
    rows.set(2, last.data());
    Bins back(49);
    rows.get(0, back.data());
    EXPECT_EQ(back, Bins(49));
    rows.get(1, back.data());
    EXPECT_EQ(back, middle);
    rows.get(2, back.data());
    EXPECT_EQ(back, last);
    rows.clear();
    rows.get(2, back.data());
    EXPECT_EQ(back, Bins(49));
}

TEST(SpectrumRows, SumsRunOverNeighbouringRowsOfBothAndCoverTheLastBin) {
    fft::SpectrumRows a(32, 4);
    fft::SpectrumRows b(32, 5);
    std::vector<Bins> as;
    std::vector<Bins> bs;
    for (int r = 0; r < 4; ++r)
        a.set(r, as.emplace_back(noiseBins(33, 10 + r)).data());
    for (int r = 0; r < 5; ++r)
        b.set(r, bs.emplace_back(noiseBins(33, 20 + r)).data());
    fft::SpectrumRows sum(32, 1);
    const auto product = [&](int r, int s, int i) {
        return std::complex<double>(as[r][i]) * std::complex<double>(bs[s][i]);
    };
    sum.setToProducts(nullptr, 0, a, 1, b, 2, 3);
    sum.setToProducts(&sum, 0, a, 0, b, 0, 1);
    Bins bins(33);
    sum.get(0, bins.data());
    for (int i = 0; i < 33; ++i) {
        const auto truth = product(0, 0, i) + product(1, 2, i) + product(2, 3, i) + product(3, 4, i);
        EXPECT_LE(std::abs(std::complex<double>(bins[i]) - truth), 2e-6) << i;
    }

    fft::SpectrumRows longer(32, 10);
    for (int r = 0; r < 5; ++r)
        longer.set(r, bs[r].data());
    fft::SpectrumRows ahead(32, 8);
    ahead.addProductsAhead(longer, 0, a, 2, 2);
    sum.setToProducts(&ahead, 3, a, 0, b, 0, 0);
    sum.get(0, bins.data());
    for (int i = 0; i < 33; ++i) {
        const auto truth = product(2, 3, i) + product(3, 4, i);
        EXPECT_LE(std::abs(std::complex<double>(bins[i]) - truth), 2e-6) << i;
    }
}

TEST(SpectrumRows, SizesThatAreNoWholeChunksAreRefused) {
    EXPECT_THROW(fft::SpectrumRows(0, 1), std::invalid_argument);
    EXPECT_THROW(fft::SpectrumRows(24, 1), std::invalid_argument);
    EXPECT_THROW(fft::SpectrumRows(32, 0), std::invalid_argument);
}

}  // namespace
