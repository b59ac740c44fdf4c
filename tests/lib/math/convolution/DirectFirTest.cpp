#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "math/DirectFir.h"
#include "support/DirectConvolution.h"
#include "support/RealtimeGuard.h"
#include "utility/RealtimeThread.h"

namespace {

DirectFir filter(const std::vector<float>& h, int longestBlock) {
    return DirectFir(std::make_shared<const DirectFirCoefficients>(h.data(), static_cast<int>(h.size())),
                     longestBlock);
}

TEST(DirectFir, IsTheConvolutionForAnyNumberOfTapsAndAnyBlock) {
    for (const int taps : {1, 31, 32, 33, 100, 128, 2048}) {
        for (const int block : {1, 7, 8, 32, 33, 64, 128}) {
            const auto h = whiteNoise(taps, 1);
            const auto in = whiteNoise(block * (300 / block + 3), 2);
            std::vector<float> out(in.size());
            DirectFir fir = filter(h, block);
            for (std::size_t n = 0; n < in.size(); n += static_cast<std::size_t>(block))
                fir.process(in.data() + n, out.data() + n, block);
            EXPECT_LE(relativeError(out, in, h, 0, static_cast<int>(in.size())), 1e-5)
                << taps << ' ' << block;
        }
    }
}

TEST(DirectFir, BlocksMayVaryUpToTheLongest) {
    const auto h = whiteNoise(70, 3);
    const auto in = whiteNoise(500, 4);
    std::vector<float> out(in.size());
    DirectFir fir = filter(h, 64);
    for (int n = 0, i = 0; n < 500; ++i) {
        const int count = std::min(500 - n, 1 + (i * 23) % 64);
        fir.process(in.data() + n, out.data() + n, count);
        n += count;
    }
    EXPECT_LE(relativeError(out, in, h, 0, 500), 1e-5);
}

TEST(DirectFir, NoTapsAreSilence) {
    DirectFir fir = filter({}, 8);
    const auto in = whiteNoise(8, 5);
    std::vector<float> out(8, 1.0f);
    fir.process(in.data(), out.data(), 8);
    EXPECT_EQ(out, std::vector<float>(8, 0.0f));
}

TEST(DirectFir, WritesNothingBehindTheBlock) {
    DirectFir fir = filter({1.0f}, 7);
    const auto in = whiteNoise(8, 6);
    std::vector<float> out(8, 9.0f);
    fir.process(in.data(), out.data(), 7);
    EXPECT_EQ(out[7], 9.0f);
}

TEST(DirectFir, ResetForgetsAllInput) {
    const auto h = whiteNoise(50, 7);
    DirectFir fir = filter(h, 32);
    const auto in = whiteNoise(32, 8);
    std::vector<float> out(32);
    fir.process(in.data(), out.data(), 32);
    fir.reset();
    fir.process(in.data(), out.data(), 32);
    EXPECT_LE(relativeError(out, in, h, 0, 32), 1e-5);
}

TEST(DirectFir, ProcessDoesNothingThatTheAudioThreadMustNot) {
    DirectFir fir = filter(whiteNoise(2048, 9), 33);
    const auto in = whiteNoise(33, 10);
    std::vector<float> out(33);
    const RealtimeGuard guard;
    {
        const tvk::RealtimeThreadScope audioThread;
        fir.process(in.data(), out.data(), 33);
    }
    EXPECT_EQ(guard.violations(), RealtimeGuard::Violations{});
}

}  // namespace
