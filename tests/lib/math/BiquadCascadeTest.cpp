#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "math/BiquadCascade.h"
#include "support/WhiteNoise.h"

namespace {

// Both kernel sets have their own cascade; the class takes the fastest, so the portable one is called here.
void portable(const std::vector<BiquadCoefficients<float>>& rows, const std::vector<float>& in,
              std::vector<float>& out, int piece) {
    fft::BiquadLanes lanes{};
    lanes.sections = static_cast<int>(rows.size());
    for (std::size_t j = 0; j < rows.size(); ++j) {
        lanes.a1[j] = rows[j].a1, lanes.a2[j] = rows[j].a2;
        lanes.b2[j] = rows[j].b2, lanes.b1[j] = rows[j].b1, lanes.b0[j] = rows[j].b0;
    }
    for (std::size_t n = 0; n < in.size(); n += static_cast<std::size_t>(piece))
        fft::portableVectorKernels().biquadCascade(
            lanes, &in[n], &out[n],
            static_cast<int>(std::min(in.size() - n, static_cast<std::size_t>(piece))));
}

std::vector<BiquadCoefficients<float>> sections(int count) {
    std::minstd_rand random(3);
    std::uniform_real_distribution<float> gain(-1.0F, 1.0F), radius(0.3F, 0.9F), angle(0.1F, 3.0F);
    std::vector<BiquadCoefficients<float>> rows;
    for (int j = 0; j < count; ++j) {
        const float r = radius(random);
        // Gains of about 1, so that a long chain neither fades nor grows.
        rows.push_back(
            {-2.0F * r * std::cos(angle(random)), r * r, 0.3F * gain(random), 0.3F * gain(random), 0.9F});
    }
    return rows;
}

// The sections one after the other, direct form II, double precision.
std::vector<double> serial(const std::vector<BiquadCoefficients<float>>& rows, const std::vector<float>& in) {
    std::vector<double> x(in.begin(), in.end());
    for (const auto& row : rows) {
        double s0 = 0.0, s1 = 0.0;
        for (double& sample : x) {
            const double w = sample - row.a1 * s0 - row.a2 * s1;
            sample = row.b2 * s1 + row.b1 * s0 + row.b0 * w;
            s1 = s0;
            s0 = w;
        }
    }
    return x;
}

TEST(BiquadCascade, IsTheSectionsInSeriesLaterByAllButOneOfThem) {
    const auto in = whiteNoise(400, 9);
    for (int count : {1, 2, 4, 5, 8, 9, 13, 16, 17, 21, 25, 30, 32}) {
        const auto rows = sections(count);
        const auto truth = serial(rows, in);
        double largest = 0.0;
        for (double sample : truth)
            largest = std::fmax(largest, std::abs(sample));
        for (int piece : {1, 7, 32, 400}) {
            BiquadCascade cascade(rows.data(), count);
            EXPECT_EQ(cascade.lateness(), count - 1);
            std::vector<float> out(in.size()), plain(in.size());
            for (std::size_t n = 0; n < in.size(); n += static_cast<std::size_t>(piece))
                cascade.process(&in[n], &out[n],
                                static_cast<int>(std::min(in.size() - n, static_cast<std::size_t>(piece))));
            portable(rows, in, plain, piece);
            const auto late = static_cast<std::size_t>(count - 1);
            for (std::size_t n = 0; n < in.size(); ++n) {
                const double expected = n < late ? 0.0 : truth[n - late];
                ASSERT_NEAR(out[n], expected, 2e-5 * largest) << count << " sections, sample " << n;
                ASSERT_NEAR(plain[n], expected, 2e-5 * largest) << count << " sections, sample " << n;
            }
        }
    }
}

TEST(BiquadCascade, WorksInPlace) {
    const auto rows = sections(30);
    auto in = whiteNoise(100, 9);
    BiquadCascade apart(rows.data(), 30), inPlace(rows.data(), 30);
    std::vector<float> out(in.size());
    apart.process(in.data(), out.data(), 100);
    inPlace.process(in.data(), in.data(), 100);
    EXPECT_EQ(in, out);
}

TEST(BiquadCascade, ClearLeavesSilence) {
    const auto rows = sections(30);
    const auto in = whiteNoise(100, 9);
    BiquadCascade cascade(rows.data(), 30);
    std::vector<float> out(in.size());
    cascade.process(in.data(), out.data(), 100);
    cascade.clear();
    const std::vector<float> silence(100, 0.0F);
    cascade.process(silence.data(), out.data(), 100);
    EXPECT_EQ(out, silence);
}

}  // namespace
