#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "math/FFTConv2.h"
#include "support/DirectConvolution.h"
#include "support/RealtimeGuard.h"
#include "utility/RealtimeThread.h"

namespace {

constexpr float kRateHz = 44100.0f;
constexpr double kTolerance = 1e-5;

FFTConv2 convolver(int block, const std::vector<float>& ir) {
    return FFTConv2(block, ir.data(), static_cast<int>(ir.size()), kRateHz);
}

// Fed in pieces of the given sizes, over and over.
std::vector<float> fedInPieces(FFTConv2& conv, const std::vector<float>& in, const std::vector<int>& pieces) {
    std::vector<float> out(in.size());
    const int count = static_cast<int>(in.size());
    for (int n = 0, i = 0; n < count; ++i) {
        const int piece = std::min(pieces[i % pieces.size()], count - n);
        conv.process(in.data() + n, out.data() + n, piece);
        n += piece;
    }
    return out;
}

struct Sizes {
    int block;
    int segment;
    int length;  // of a partition
    int stride;  // between input spectra
};

class FFTConv2Sizes : public testing::TestWithParam<Sizes> {};

INSTANTIATE_TEST_SUITE_P(Blocks, FFTConv2Sizes,
                         testing::Values(Sizes{4, 16, 12, 3}, Sizes{32, 128, 96, 3}, Sizes{33, 256, 99, 3},
                                         Sizes{64, 256, 192, 3}, Sizes{100, 512, 300, 3},
                                         Sizes{128, 512, 384, 3}, Sizes{129, 512, 129, 1},
                                         Sizes{300, 1024, 300, 1}, Sizes{2048, 4096, 2048, 1}),
                         [](const auto& sizes) { return "Block" + std::to_string(sizes.param.block); });

TEST_P(FFTConv2Sizes, FollowTheBlockAndTheLengthOfTheResponse) {
    const Sizes sizes = GetParam();
    for (const int irLength : {0, 1, sizes.length - 1, sizes.length, sizes.length + 1, 5 * sizes.length}) {
        const std::vector<float> ir(static_cast<std::size_t>(irLength), 1.0f);
        const FFTConv2 conv = convolver(sizes.block, ir);
        EXPECT_EQ(conv.segmentSize(), sizes.segment);
        EXPECT_EQ(conv.fftSize(), 2 * sizes.segment);
        EXPECT_EQ(conv.binCount(), sizes.segment + 1);
        EXPECT_EQ(conv.partitionCount(), irLength / sizes.length + 1);
        EXPECT_EQ(conv.ringSize(), sizes.stride * conv.partitionCount());
    }
}

TEST_P(FFTConv2Sizes, OutputIsTheConvolutionWithoutDelay) {
    const Sizes sizes = GetParam();
    for (const int irLength : {1, sizes.length - 1, sizes.length, sizes.length + 1, 4 * sizes.length + 5}) {
        const auto ir = whiteNoise(irLength, 1);
        const auto in = whiteNoise(7 * std::max(sizes.block, sizes.length), 2);
        FFTConv2 conv = convolver(sizes.block, ir);
        const auto out = fedInPieces(conv, in, {sizes.block});
        EXPECT_LE(relativeError(out, in, ir, 0, static_cast<int>(in.size())), kTolerance) << irLength;
    }
}

TEST_P(FFTConv2Sizes, PiecesOfAnySizeGiveTheSameStream) {
    const Sizes sizes = GetParam();
    const auto ir = whiteNoise(2 * sizes.length + 3, 3);
    const auto in = whiteNoise(5 * std::max(sizes.block, sizes.length), 4);
    for (const std::vector<int>& pieces : {std::vector<int>{7}, std::vector<int>{33, 1, 5, 64},
                                           std::vector<int>{sizes.block - 1, 2, 2 * sizes.block + 1}}) {
        FFTConv2 conv = convolver(sizes.block, ir);
        const auto out = fedInPieces(conv, in, pieces);
        EXPECT_LE(relativeError(out, in, ir, 0, static_cast<int>(in.size())), kTolerance) << pieces[0];
    }
}

TEST(FFTConv2, TheSmallestBlocksConvolve) {
    for (int block = 1; block <= 3; ++block) {
        const auto ir = whiteNoise(40, 5);
        const auto in = whiteNoise(100, 6);
        FFTConv2 conv = convolver(block, ir);
        EXPECT_LE(relativeError(fedInPieces(conv, in, {1, 2, 5}), in, ir, 0, 100), kTolerance) << block;
    }
}

TEST(FFTConv2, AResponseOfOneSampleGivesTheInputInEveryPiece) {
    FFTConv2 conv = convolver(64, {1.0f});
    const auto in = whiteNoise(640, 7);
    const auto out = fedInPieces(conv, in, {64, 10, 54, 100});
    for (std::size_t n = 0; n < in.size(); ++n)
        EXPECT_NEAR(out[n], in[n], 1e-6) << n;
}

TEST(FFTConv2, AnEmptyResponseIsOneSilentPartition) {
    FFTConv2 conv(64, nullptr, 0, kRateHz);
    EXPECT_EQ(conv.partitionCount(), 1);
    const auto in = whiteNoise(256, 8);
    for (const float y : fedInPieces(conv, in, {64}))
        EXPECT_EQ(y, 0.0f);
}

TEST(FFTConv2, AddsToWhatIsInTheOutput) {
    FFTConv2 conv = convolver(32, {0.5f});
    const auto in = whiteNoise(32, 9);
    std::vector<float> out(32, 3.0f);
    conv.process(in.data(), out.data(), 32);
    for (std::size_t n = 0; n < in.size(); ++n)
        EXPECT_NEAR(out[n], 3.0f + 0.5f * in[n], 1e-6);
}

TEST(FFTConv2, ConvolversOnOneSetOfSpectraKeepTheirOwnHistory) {
    const auto ir = whiteNoise(500, 10);
    const auto spectra = std::make_shared<const PartitionSpectra>(64, ir.data(), 500);
    FFTConv2 first(spectra, kRateHz);
    FFTConv2 second(spectra, kRateHz);
    const auto inFirst = whiteNoise(1024, 11);
    const auto inSecond = whiteNoise(1024, 12);
    std::vector<float> outFirst(1024);
    std::vector<float> outSecond(1024);
    for (int n = 0; n < 1024; n += 64) {
        first.process(inFirst.data() + n, outFirst.data() + n, 64);
        second.process(inSecond.data() + n, outSecond.data() + n, 64);
    }
    EXPECT_LE(relativeError(outFirst, inFirst, ir, 0, 1024), kTolerance);
    EXPECT_LE(relativeError(outSecond, inSecond, ir, 0, 1024), kTolerance);
}

TEST(FFTConv2, ResetForgetsAllInput) {
    const auto ir = whiteNoise(700, 13);
    FFTConv2 conv = convolver(64, ir);
    fedInPieces(conv, whiteNoise(1000, 14), {64});
    conv.reset();
    const auto in = whiteNoise(1000, 15);
    EXPECT_LE(relativeError(fedInPieces(conv, in, {64}), in, ir, 0, 1000), kTolerance);
}

TEST(FFTConv2, ABlockBelowOneIsRefused) {
    EXPECT_THROW(FFTConv2(0, nullptr, 0, kRateHz), std::invalid_argument);
    EXPECT_THROW(FFTConv2(-64, nullptr, 0, kRateHz), std::invalid_argument);
}

TEST(FFTConv2, ProcessDoesNothingThatTheAudioThreadMustNot) {
    for (const int block : {64, 128, 2048}) {
        const auto ir = whiteNoise(5000, 16);
        FFTConv2 conv = convolver(block, ir);
        const auto in = whiteNoise(4 * block, 17);
        std::vector<float> out(in.size());
        const RealtimeGuard guard;
        {
            const tvk::RealtimeThreadScope audioThread;
            conv.process(in.data(), out.data(), 2 * block);
            for (int n = 2 * block; n < 4 * block; n += 32)
                conv.process(in.data() + n, out.data() + n, 32);
        }
        EXPECT_EQ(guard.violations(), RealtimeGuard::Violations{}) << block;
    }
}

}  // namespace
