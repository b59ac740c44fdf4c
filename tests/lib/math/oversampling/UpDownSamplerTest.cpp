#include <algorithm>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <numbers>
#include <random>
#include <stdexcept>
#include <vector>

#include "math/UpDownSampler.h"
#include "math/UpSampleFilters.h"
#include "support/LogRecorder.h"
#include "tables/OversamplingFirs.h"

namespace {

constexpr double kSampleRateHz = 44100.0;
constexpr double kTurn = 2.0 * std::numbers::pi;

using Signal = std::vector<float>;

Signal noise(std::size_t count) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
    Signal samples(count);
    for (float& x : samples)
        x = uniform(random);
    return samples;
}

Signal sine(double frequencyHz, std::size_t count) {
    Signal samples(count);
    for (std::size_t n = 0; n < count; ++n)
        samples[n] =
            static_cast<float>(std::sin(kTurn * frequencyHz * static_cast<double>(n) / kSampleRateHz));
    return samples;
}

// The signal through up or down block by block; its length is a multiple of the block's.
Signal throughUp(UpDownSampler& sampler, const Signal& in) {
    Signal out(in.size() * static_cast<std::size_t>(sampler.rate()));
    for (std::size_t n = 0; n < in.size(); n += static_cast<std::size_t>(sampler.blockLength()))
        sampler.up(&in[n], &out[n * static_cast<std::size_t>(sampler.rate())]);
    return out;
}
Signal throughDown(UpDownSampler& sampler, const Signal& in) {
    Signal out(in.size() / static_cast<std::size_t>(sampler.rate()));
    for (std::size_t n = 0; n < out.size(); n += static_cast<std::size_t>(sampler.blockLength()))
        sampler.down(&in[n * static_cast<std::size_t>(sampler.rate())], &out[n]);
    return out;
}

// Amplitude and phase of a frequency over the samples, with a window that leaks less than -90 dB.
std::complex<double> tone(const Signal& x, double frequencyHz, double rateHz) {
    std::complex<double> sum = 0.0;
    double weights = 0.0;
    for (std::size_t n = 0; n < x.size(); ++n) {
        const double t = (static_cast<double>(n) + 0.5) / static_cast<double>(x.size());
        const double window = 0.35875 - 0.48829 * std::cos(kTurn * t) + 0.14128 * std::cos(2.0 * kTurn * t) -
                              0.01168 * std::cos(3.0 * kTurn * t);
        sum += window * static_cast<double>(x[n]) *
               std::polar(1.0, -kTurn * frequencyHz * static_cast<double>(n) / rateHz);
        weights += window;
    }
    return 2.0 * sum / weights;
}

double decibel(double ratio) {
    return 20.0 * std::log10(std::max(ratio, 1e-12));
}

struct Design {
    int rate;
    int length;
    double passEdgeHz;
};

class EveryPair : public testing::TestWithParam<Design> {
protected:
    int rate() const { return GetParam().rate; }
    int length() const { return GetParam().length; }
    const tables::OversamplingFirPair& table() const {
        for (const auto& pair : tables::kOversamplingFirs) {
            if (pair.rate == rate() && pair.length == length()) return pair;
        }
        throw std::logic_error("no such pair");
    }
};

INSTANTIATE_TEST_SUITE_P(Family, EveryPair,
                         testing::Values(Design{2, 8, 13000}, Design{2, 12, 16000}, Design{3, 6, 11000},
                                         Design{3, 10, 15000}, Design{4, 6, 11000}, Design{4, 10, 15000},
                                         Design{4, 12, 16000}, Design{5, 6, 11000}, Design{5, 10, 15000}),
                         [](const auto& pair) {
                             return std::to_string(pair.param.rate) + "_" + std::to_string(pair.param.length);
                         });

TEST_P(EveryPair, UpIsAHoldThenTheTablesFilter) {
    for (const int block : {1, 7, 8, 32, 64}) {
        UpDownSampler sampler(block, rate(), length());
        const Signal in = noise(static_cast<std::size_t>(block) * 20);
        const Signal out = throughUp(sampler, in);
        for (std::size_t m = 0; m < out.size(); ++m) {
            double truth = 0.0;
            for (std::size_t j = 0; j < static_cast<std::size_t>(rate() * length()) && j <= m; ++j)
                truth += double{table().up[j]} * in[(m - j) / static_cast<std::size_t>(rate())];
            ASSERT_NEAR(out[m], truth, 1e-6) << block << ' ' << m;
        }
    }
}

TEST_P(EveryPair, DownIsTheTablesFilterAtPhaseZero) {
    const auto step = static_cast<std::size_t>(rate());
    for (const int block : {1, 7, 8, 32, 64}) {
        UpDownSampler sampler(block, rate(), length());
        const Signal in = noise(static_cast<std::size_t>(block) * 20 * step);
        const Signal out = throughDown(sampler, in);
        for (std::size_t n = 0; n < out.size(); ++n) {
            double truth = 0.0;
            for (std::size_t j = 0; j < step * static_cast<std::size_t>(length()) && j <= n * step; ++j)
                truth += double{table().down[j]} * in[n * step - j];
            ASSERT_NEAR(out[n], truth, 1e-6) << block << ' ' << n;
        }
    }
}

TEST_P(EveryPair, PlanesHoldTheSamplesOfEachPhase) {
    for (const int block : {5, 8, 24}) {
        UpDownSampler ordered(block, rate(), length());
        UpDownSampler planar(block, rate(), length());
        const Signal in = noise(static_cast<std::size_t>(block));
        const Signal up = throughUp(ordered, in);
        fft::AlignedFloats planes(static_cast<std::size_t>(planar.planesLength()));
        planar.upToPlanes(in.data(), planes.data());
        for (int n = 0; n < block; ++n) {
            for (int p = 0; p < rate(); ++p)
                EXPECT_EQ(planes.at(p * planar.planeStride() + n), up.at(n * rate() + p));
        }
        const Signal down = throughDown(ordered, up);
        Signal fromPlanes(static_cast<std::size_t>(block));
        planar.downFromPlanes(planes.data(), fromPlanes.data());
        EXPECT_EQ(fromPlanes, down);
    }
}

TEST_P(EveryPair, AConstantComesBackAfterTheFiltersDelay) {
    for (const int block : {8, 32}) {
        UpDownSampler sampler(block, rate(), length());
        const Signal up = throughUp(sampler, Signal(96, 0.75f));
        for (std::size_t m = static_cast<std::size_t>(rate() * length()); m < up.size(); ++m)
            EXPECT_NEAR(up[m], 0.75, 1e-6) << m;
        const Signal back = throughDown(sampler, up);
        for (std::size_t n = static_cast<std::size_t>(2 * length() + 1); n < back.size(); ++n)
            EXPECT_NEAR(back[n], 0.75, 1e-6) << n;
    }
}

TEST_P(EveryPair, UpAndDownPassTheBandFlatAndDelayedAlike) {
    // Each linear-phase filter delays by half its length and the hold by half a group of phases.
    const double delaySamples = (rate() * length() - 1.0) / rate() + (rate() - 1.0) / (2.0 * rate());
    UpDownSampler sampler(32, rate(), length());
    for (double frequency = 100.0; frequency <= GetParam().passEdgeHz; frequency += 700.0) {
        const Signal out = throughDown(sampler, throughUp(sampler, sine(frequency, 4096)));
        const Signal settled(out.begin() + 1024, out.end());
        const auto passed = tone(settled, frequency, kSampleRateHz);
        EXPECT_LE(std::abs(decibel(std::abs(passed))), 0.15) << frequency;
        const double turns = frequency * (1024.0 - delaySamples) / kSampleRateHz;
        // sin(a) = Re(-i exp(i a)): the tone of a sine has phase -90 degrees.
        const auto aligned = passed * std::polar(1.0, -kTurn * turns) * std::complex<double>(0.0, 1.0);
        EXPECT_NEAR(std::arg(aligned), 0.0, 1e-3) << frequency;
    }
}

TEST_P(EveryPair, ImagesOfTheBandAreSixtyDecibelBelow) {
    UpDownSampler sampler(32, rate(), length());
    const double frequency = 9000.0;
    const Signal out = throughUp(sampler, sine(frequency, 8192));
    const Signal settled(out.begin() + 1024, out.end());
    const double highRateHz = kSampleRateHz * rate();
    for (int image = 1; image * kSampleRateHz - frequency < highRateHz / 2.0; ++image) {
        for (const double side : {-1.0, 1.0}) {
            const double imageHz = image * kSampleRateHz + side * frequency;
            if (imageHz >= highRateHz / 2.0) continue;
            EXPECT_LE(decibel(std::abs(tone(settled, imageHz, highRateHz))), -60.0) << imageHz;
        }
    }
}

TEST_P(EveryPair, TonesThatWouldFoldIntoTheBandAreSixtyDecibelBelow) {
    UpDownSampler sampler(32, rate(), length());
    const double highRateHz = kSampleRateHz * rate();
    for (double folded = 500.0; folded <= GetParam().passEdgeHz; folded += 1500.0) {
        const double frequency = kSampleRateHz - folded;
        if (frequency >= highRateHz / 2.0) continue;
        Signal in(static_cast<std::size_t>(8192 * rate()));
        for (std::size_t m = 0; m < in.size(); ++m)
            in[m] = static_cast<float>(std::sin(kTurn * frequency * static_cast<double>(m) / highRateHz));
        const Signal out = throughDown(sampler, in);
        const Signal settled(out.begin() + 64, out.end());
        EXPECT_LE(decibel(std::abs(tone(settled, folded, kSampleRateHz))), -60.0) << frequency;
    }
}

TEST_P(EveryPair, ShortBlocksGiveWhatLongBlocksGive) {
    const Signal in = noise(1344);
    UpDownSampler whole(1344, rate(), length());
    const Signal up = throughUp(whole, in);
    const Signal down = throughDown(whole, up);
    for (const int block : {1, 2, 3, 4, 6, 7, 8, 12, 32, 64}) {
        UpDownSampler sampler(block, rate(), length());
        const Signal upInBlocks = throughUp(sampler, in);
        const Signal downInBlocks = throughDown(sampler, up);
        ASSERT_EQ(upInBlocks, up) << block;
        ASSERT_EQ(downInBlocks, down) << block;
    }
}

TEST(UpDownSampler, ThreeTimesTenDelaysByExactlyTenSamples) {
    UpDownSampler sampler(32, 3, 10);
    Signal impulse(32);
    impulse[0] = 1.0f;
    const Signal response = throughDown(sampler, throughUp(sampler, impulse));
    // The first moment over the sum is the group delay at DC; symmetry makes it the delay everywhere.
    double sum = 0.0;
    double moment = 0.0;
    for (std::size_t n = 0; n < response.size(); ++n) {
        sum += response[n];
        moment += static_cast<double>(n) * response[n];
    }
    EXPECT_NEAR(moment / sum, 10.0, 1e-5);
    for (std::size_t n = 0; n < 10; ++n)
        EXPECT_NEAR(response[n], response[20 - n], 1e-7) << n;
}

template <typename Filter>
bool selects(int block, int rate, int length) {
    const UpDownSampler sampler(block, rate, length);
    return dynamic_cast<const Filter*>(sampler.upFilter()) &&
           dynamic_cast<const Filter*>(sampler.downFilter());
}

TEST(UpDownSampler, LongBlocksSelectThePlainClassOfTheirPair) {
    for (const int block : {9, 16, 32}) {
        EXPECT_TRUE(selects<UpSampleFilter28>(block, 2, 8));
        EXPECT_TRUE(selects<UpSampleFilter212>(block, 2, 12));
        EXPECT_TRUE(selects<UpSampleFilter36>(block, 3, 6));
        EXPECT_TRUE(selects<UpSampleFilter310>(block, 3, 10));
        EXPECT_TRUE(selects<UpSampleFilter46>(block, 4, 6));
        EXPECT_TRUE(selects<UpSampleFilter410>(block, 4, 10));
        EXPECT_TRUE(selects<UpSampleFilter412>(block, 4, 12));
        EXPECT_TRUE(selects<UpSampleFilter56>(block, 5, 6));
        EXPECT_TRUE(selects<UpSampleFilter510>(block, 5, 10));
    }
}

TEST(UpDownSampler, BlocksOfUpToEightSelectTheShortClassWhereThePairHasOne) {
    for (const int block : {1, 7, 8}) {
        EXPECT_TRUE(selects<UpSampleFilter28SBS>(block, 2, 8));
        EXPECT_TRUE(selects<UpSampleFilter212SBS>(block, 2, 12));
        EXPECT_TRUE(selects<UpSampleFilter36>(block, 3, 6));
        EXPECT_TRUE(selects<UpSampleFilter310SBS>(block, 3, 10));
        EXPECT_TRUE(selects<UpSampleFilter46>(block, 4, 6));
        EXPECT_TRUE(selects<UpSampleFilter410SBS>(block, 4, 10));
        EXPECT_TRUE(selects<UpSampleFilter412SBS>(block, 4, 12));
        EXPECT_TRUE(selects<UpSampleFilter56>(block, 5, 6));
        EXPECT_TRUE(selects<UpSampleFilter510SBS>(block, 5, 10));
    }
}

TEST(UpDownSampler, AnInvalidPairLogsAnErrorAndItsCallsDoNothing) {
    LogRecorder log;
    UpDownSampler sampler(16, 3, 8);
    EXPECT_TRUE(log.has("Error invalid combination: 3, 8"));
    EXPECT_EQ(sampler.upFilter(), nullptr);
    EXPECT_EQ(sampler.downFilter(), nullptr);
    const Signal in(48, 1.0f);
    Signal out(48, 5.0f);
    sampler.up(in.data(), out.data());
    sampler.down(in.data(), out.data());
    sampler.upToPlanes(in.data(), out.data());
    sampler.downFromPlanes(in.data(), out.data());
    EXPECT_EQ(out, Signal(48, 5.0f));
}

TEST(UpDownSampler, EveryOtherPairIsInvalid) {
    LogRecorder log;
    int valid = 0;
    for (int rate = -1; rate <= 8; ++rate) {
        for (int length = -1; length <= 16; ++length)
            valid += UpDownSampler(16, rate, length).upFilter() != nullptr;
    }
    EXPECT_EQ(valid, 9);
}

TEST(UpDownSampler, LengthsFollowFromBlockAndRate) {
    const UpDownSampler sampler(13, 5, 10);
    EXPECT_EQ(sampler.blockLength(), 13);
    EXPECT_EQ(sampler.oversampledLength(), 65);
    EXPECT_EQ(sampler.rate(), 5);
    EXPECT_EQ(sampler.planeStride(), 16);
    EXPECT_EQ(sampler.planesLength(), 80);
}

}  // namespace
