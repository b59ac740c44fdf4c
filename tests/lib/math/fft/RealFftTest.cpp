#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <random>
#include <stdexcept>
#include <thread>
#include <vector>

#include "math/fft/AlignedFloats.h"
#include "math/fft/RealFft.h"

namespace {

using Spectrum = std::vector<std::complex<float>, fft::CacheLineAllocator<std::complex<float>>>;

fft::AlignedFloats noise(int count) {
    std::mt19937 random(20);
    std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
    fft::AlignedFloats samples(static_cast<std::size_t>(count));
    for (float& x : samples)
        x = uniform(random);
    return samples;
}

std::complex<double> directBin(const fft::AlignedFloats& time, std::size_t k) {
    std::complex<double> sum = 0.0;
    for (std::size_t n = 0; n < time.size(); ++n) {
        const double turns = static_cast<double>(k * n % time.size()) / static_cast<double>(time.size());
        sum += static_cast<double>(time[n]) * std::polar(1.0, -2.0 * std::numbers::pi * turns);
    }
    return sum;
}

class RealFftSize : public testing::TestWithParam<int> {};

// An error of a float transform grows with the root of N times its logarithm; 1e-6 sqrt(N) bounds it.
TEST_P(RealFftSize, ForwardIsTheDiscreteFourierTransform) {
    const int size = GetParam();
    const auto time = noise(size);
    Spectrum bins(static_cast<std::size_t>(size / 2 + 1));
    fft::RealFft(size).forward(time.data(), bins.data());
    const std::size_t step = bins.size() > 600 ? 97 : 1;
    for (std::size_t k = 0; k < bins.size(); k += k + step < bins.size() ? step : 1) {
        const auto truth = directBin(time, k);
        EXPECT_NEAR(bins[k].real(), truth.real(), 1e-6 * std::sqrt(size)) << k;
        EXPECT_NEAR(bins[k].imag(), truth.imag(), 1e-6 * std::sqrt(size)) << k;
    }
}

TEST_P(RealFftSize, ForwardLeavesItsInputAsItWas) {
    const int size = GetParam();
    const auto time = noise(size);
    auto given = time;
    Spectrum bins(static_cast<std::size_t>(size / 2 + 1));
    fft::RealFft(size).forward(given.data(), bins.data());
    EXPECT_EQ(given, time);
}

TEST_P(RealFftSize, InverseAfterForwardGivesTheInputBack) {
    const int size = GetParam();
    const auto time = noise(size);
    fft::RealFft transform(size);
    Spectrum bins(static_cast<std::size_t>(transform.binCount()));
    fft::AlignedFloats back(time.size());
    transform.forward(time.data(), bins.data());
    transform.inverse(bins.data(), back.data());
    for (std::size_t n = 0; n < time.size(); ++n)
        EXPECT_NEAR(back[n], time[n], 2e-6) << n;
}

TEST_P(RealFftSize, InverseOfOneBinIsItsCosineDividedByTheSize) {
    const int size = GetParam();
    fft::RealFft transform(size);
    Spectrum bins(static_cast<std::size_t>(transform.binCount()));
    bins[3] = {0.0f, 1.0f};
    fft::AlignedFloats time(static_cast<std::size_t>(size));
    transform.inverse(bins.data(), time.data());
    for (int n = 0; n < size; ++n) {
        const double angle = 2.0 * std::numbers::pi * 3.0 * n / size;
        EXPECT_NEAR(time[static_cast<std::size_t>(n)], -2.0 * std::sin(angle) / size, 1e-6 / size) << n;
    }
}

INSTANTIATE_TEST_SUITE_P(PowersOfTwo, RealFftSize,
                         testing::Values(16, 32, 64, 128, 256, 512, 1024, 4096, 8192));

TEST(RealFft, RefusesSizesThatAreNoPowerOfTwoFromSixteenUp) {
    for (const int size : {-16, 0, 1, 8, 15, 17, 48, 1000})
        EXPECT_THROW(fft::RealFft{size}, std::invalid_argument) << size;
}

TEST(RealFft, CircularConvolutionIsTheProductOfSpectra) {
    constexpr int kSize = 256;
    const auto signal = noise(kSize);
    fft::AlignedFloats response(kSize);
    for (int n = 0; n < 40; ++n)
        response[static_cast<std::size_t>(n)] = std::exp(-0.1f * static_cast<float>(n));
    fft::RealFft transform(kSize);
    Spectrum a(kSize / 2 + 1);
    Spectrum b(kSize / 2 + 1);
    transform.forward(signal.data(), a.data());
    transform.forward(response.data(), b.data());
    for (std::size_t k = 0; k < a.size(); ++k)
        a[k] *= b[k];
    fft::AlignedFloats product(kSize);
    transform.inverse(a.data(), product.data());
    for (std::size_t n = 0; n < kSize; ++n) {
        double direct = 0.0;
        for (std::size_t k = 0; k < kSize; ++k)
            direct += static_cast<double>(response[k]) * signal[(n + kSize - k) % kSize];
        EXPECT_NEAR(product[n], direct, 1e-5) << n;
    }
}

TEST(RealFft, ObjectsOfSeveralThreadsAreMadeAndRunAtTheSameTime) {
    const auto time = noise(512);
    Spectrum expected(257);
    fft::RealFft(512).forward(time.data(), expected.data());
    std::vector<Spectrum> results(4, Spectrum(257));
    {
        std::vector<std::jthread> threads;
        for (auto& result : results) {
            threads.emplace_back([&] {
                for (int i = 0; i < 20; ++i)
                    fft::RealFft(512).forward(time.data(), result.data());
            });
        }
    }
    for (const auto& result : results)
        EXPECT_EQ(result, expected);
}

}  // namespace
