#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

#include "math/fft/VectorKernels.h"

namespace {

// Every test holds for the set of this processor and for the one that runs everywhere.
class VectorKernels : public testing::TestWithParam<bool> {
protected:
    const fft::VectorKernels& kernels() const {
        return GetParam() ? fft::vectorKernels() : fft::portableVectorKernels();
    }
};

INSTANTIATE_TEST_SUITE_P(Sets, VectorKernels, testing::Bool(),
                         [](const auto& set) { return set.param ? "Fastest" : "Portable"; });

std::vector<float> noise(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
    std::vector<float> samples(count);
    for (float& x : samples)
        x = uniform(random);
    return samples;
}

TEST_P(VectorKernels, SplitIsTheDirectSumOfEachFilter) {
    constexpr int kReach = 16;
    for (int phases = 1; phases <= 5; ++phases) {
        for (const int taps : {1, 7, 13}) {
            for (const int count : {8, 16, 24, 32, 40, 72}) {
                const auto in = noise(static_cast<std::size_t>(kReach + count), 1);
                const auto coefficients = noise(static_cast<std::size_t>(phases * taps), 2);
                const int stride = count + 3;
                std::vector<float> out(static_cast<std::size_t>(phases * stride), 7.0f);
                kernels().firSplit(in.data() + kReach, coefficients.data(), phases, taps, out.data(), stride,
                                   count);
                for (int p = 0; p < phases; ++p) {
                    for (int n = 0; n < stride; ++n) {
                        double truth = 0.0;
                        for (int k = 0; k < taps; ++k)
                            truth += double{coefficients.at(p * taps + k)} *
                                     (n < count ? in.at(kReach + n - k) : 0);
                        if (n >= count) truth = 7.0;

                        EXPECT_NEAR(out.at(p * stride + n), truth, 2e-6) << phases << ' ' << taps << ' ' << n;
                    }
                }
            }
        }
    }
}

TEST_P(VectorKernels, MergeIsTheDirectSumOverAllPlanes) {
    constexpr int kReach = 16;
    for (int phases = 1; phases <= 5; ++phases) {
        for (const int taps : {1, 7, 13}) {
            for (const int count : {8, 16, 24, 32, 40, 72}) {
                const int stride = kReach + count;
                const auto in = noise(static_cast<std::size_t>(phases * stride), 3);
                const auto coefficients = noise(static_cast<std::size_t>(phases * taps), 4);
                std::vector<float> out(static_cast<std::size_t>(count + 1), 7.0f);
                kernels().firMerge(in.data() + kReach, stride, coefficients.data(), phases, taps, out.data(),
                                   count);
                for (int n = 0; n < count; ++n) {
                    double truth = 0.0;
                    for (int p = 0; p < phases; ++p) {
                        for (int k = 0; k < taps; ++k)
                            truth +=
                                double{coefficients.at(p * taps + k)} * in.at(p * stride + kReach + n - k);
                    }
                    EXPECT_NEAR(out.at(n), truth, 6e-6) << phases << ' ' << taps << ' ' << n;
                }
                EXPECT_EQ(out.back(), 7.0f);
            }
        }
    }
}

// Each segment a different constant, so that the result names the segment.
fft::CubicSegments staircase() {
    fft::CubicSegments curve{};
    for (int i = 0; i < 8; ++i) {
        curve.breakpoints[i] =
            i < 7 ? -0.6f + 0.2f * static_cast<float>(i) : std::numeric_limits<float>::infinity();
        curve.c0[i] = static_cast<float>(i);
    }
    return curve;
}

TEST_P(VectorKernels, AValueOnABreakpointFallsInTheLowerSegmentAndTheNextFloatInTheUpper) {
    const auto curve = staircase();
    for (int i = 0; i < 7; ++i) {
        const float x[2] = {curve.breakpoints[i], std::nextafter(curve.breakpoints[i], 2.0f)};
        float y[2];
        kernels().cubicSegments(curve, 1.0f, x, y, 2);
        EXPECT_EQ(y[0], static_cast<float>(i));
        EXPECT_EQ(y[1], static_cast<float>(i + 1));
    }
}

TEST_P(VectorKernels, SegmentsAreCubicsAboutTheirCentres) {
    fft::CubicSegments curve = staircase();
    const auto random = noise(32, 5);
    for (int i = 0; i < 8; ++i) {
        curve.centre[i] = random[i];
        curve.c1[i] = random[8 + i];
        curve.c2[i] = random[16 + i];
        curve.c3[i] = random[24 + i];
    }
    for (int count = 0; count <= 40; ++count) {
        std::vector<float> in(static_cast<std::size_t>(count + 1), 3.0f);
        for (int n = 0; n < count; ++n)
            in[n] = -2.5f + 5.0f * static_cast<float>(n) / 37.0f;
        std::vector<float> out(in.size(), 9.0f);
        kernels().cubicSegments(curve, 2.0f, in.data(), out.data(), count);
        for (int n = 0; n < count; ++n) {
            const double x = std::clamp(in[n] / 2.0f, -1.0f, 1.0f);
            int i = 0;
            while (i < 7 && curve.breakpoints[i] < x)
                ++i;
            const double t = x - curve.centre[i];
            const double truth = ((curve.c3[i] * t + curve.c2[i]) * t + curve.c1[i]) * t + curve.c0[i];
            EXPECT_NEAR(out[n], truth, 4e-6) << count << ' ' << n;
        }
        EXPECT_EQ(out[count], 9.0f) << "written behind the end";
    }
}

TEST_P(VectorKernels, InputsBeyondTheRangeStayAtItsEnds) {
    fft::CubicSegments line = staircase();
    std::fill(std::begin(line.c0), std::end(line.c0), 0.0f);
    std::fill(std::begin(line.c1), std::end(line.c1), 1.0f);
    const float infinity = std::numeric_limits<float>::infinity();
    float x[9] = {10.0f, 10.1f, 1e30f, infinity, -10.0f, -10.1f, -1e30f, -infinity, 0.0f};
    kernels().cubicSegments(line, 10.0f, x, x, 9);
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(x[i], i < 4 ? 1.0f : i < 8 ? -1.0f : 0.0f) << i;
}

fft::HighPassRecursion recursion(double pole, int phases) {
    fft::HighPassRecursion filter{};
    filter.phases = phases;
    for (int p = 0; p < 5; ++p)
        filter.polePower[p] = static_cast<float>(std::pow(pole, p + 1));
    for (int n = 0; n < 8; ++n)
        filter.groupPower[n] = static_cast<float>(std::pow(pole, phases * (n + 1)));
    return filter;
}

TEST_P(VectorKernels, HighPassIsTheSerialRecursionInTheOrderOfTime) {
    for (int phases = 1; phases <= 5; ++phases) {
        for (const double pole : {0.3, 0.9, 0.9993}) {
            for (const int count : {1, 3, 7, 8, 9, 32, 33}) {
                auto filter = recursion(pole, phases);
                double lastIn = 0.0;
                double lastOut = 0.0;
                for (unsigned block = 0; block < 6; ++block) {
                    const int stride = count + 2;
                    const auto in = noise(static_cast<std::size_t>(phases * stride), block);
                    auto planes = in;
                    kernels().onePoleHighPass(filter, planes.data(), stride, count);
                    for (int n = 0; n < count; ++n) {
                        for (int p = 0; p < phases; ++p) {
                            const double x = in[p * stride + n];
                            lastOut = pole * (lastOut + x - lastIn);
                            lastIn = x;
                            EXPECT_NEAR(planes[p * stride + n], lastOut, 5e-6)
                                << phases << ' ' << pole << ' ' << n;
                        }
                    }
                    for (int p = 0; p < phases; ++p)
                        EXPECT_EQ(planes[p * stride + count], in[p * stride + count])
                            << "written behind the end";
                }
            }
        }
    }
}

TEST_P(VectorKernels, HighPassOfNoSamplesLeavesTheStateAsItWas) {
    auto filter = recursion(0.9, 1);
    float x = 1.0f;
    kernels().onePoleHighPass(filter, &x, 0, 1);
    const auto before = filter;
    kernels().onePoleHighPass(filter, &x, 0, 0);
    EXPECT_EQ(filter.lastIn, before.lastIn);
    EXPECT_EQ(filter.lastOut, before.lastOut);
}

TEST_P(VectorKernels, BankIsEightLowPassesEachWithItsOwnPole) {
    constexpr int kStride = 45;
    for (const int count : {1, 3, 8, 32, 45}) {
        const auto in = noise(8 * kStride, 5);
        std::vector<float> out(8 * kStride, 7.0f);
        const float* rows[8];
        for (int r = 0; r < 8; ++r)
            rows[r] = in.data() + r * kStride;
        const auto poles = noise(8, 6);
        auto states = noise(8, 7);
        const auto before = states;
        kernels().onePoleBank(poles.data(), states.data(), rows, out.data(), kStride, count);
        for (int r = 0; r < 8; ++r) {
            double y = before.at(r);
            for (int n = 0; n < kStride; ++n) {
                if (n < count) y = (1.0 - poles.at(r)) * in.at(r * kStride + n) + poles.at(r) * y;
                EXPECT_NEAR(out.at(r * kStride + n), n < count ? y : 7.0, 2e-6)
                    << count << ' ' << r << ' ' << n;
            }
            EXPECT_NEAR(states.at(r), y, 2e-6);
        }
    }
}

}  // namespace
