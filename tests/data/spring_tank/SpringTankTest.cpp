// The tank's response as it is stored.
#include <algorithm>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <numbers>
#include <sndfile.h>
#include <vector>

namespace {

constexpr double kRateHz = 44100.0;
using Samples = std::vector<double>;

struct Recording {
    SF_INFO info{};
    Samples samples;
};

const Recording& recording() {
    static const Recording loaded = [] {
        Recording made;
        SNDFILE* file = sf_open(TARVEK_TANK, SFM_READ, &made.info);
        if (!file) return made;
        made.samples.resize(static_cast<std::size_t>(made.info.frames * made.info.channels));
        sf_readf_double(file, made.samples.data(), made.info.frames);
        sf_close(file);
        return made;
    }();
    return loaded;
}

const Samples& response() {
    return recording().samples;
}

double peak() {
    double largest = 0.0;
    for (double x : response())
        largest = std::fmax(largest, std::abs(x));
    return largest;
}

std::size_t at(double seconds) {
    return static_cast<std::size_t>(std::lround(seconds * kRateHz));
}

// Size of the component at hz around a moment: a Gaussian window of the given standard deviation, which adds
// no delay.
double componentAt(double hz, double seconds, double deviationSeconds) {
    const auto reach = at(4.0 * deviationSeconds);
    const auto centre = at(seconds);
    std::complex<double> sum = 0.0;
    for (std::size_t n = centre > reach ? centre - reach : 0; n < centre + reach; ++n) {
        const double t = (static_cast<double>(n) - static_cast<double>(centre)) / kRateHz / deviationSeconds;
        sum += response()[n] * std::exp(-0.5 * t * t) *
               std::polar(1.0, -2.0 * std::numbers::pi * hz * static_cast<double>(n) / kRateHz);
    }
    return std::abs(sum);
}

// When the component at hz is largest in the first crossing of the springs.
double arrivalMs(double hz) {
    double best = 0.0, moment = 0.0;
    for (double ms = 20.0; ms < 80.0; ms += 0.1) {
        const double size = componentAt(hz, 1e-3 * ms, 1.4e-3 * 1000.0 / hz);
        if (size > best) best = size, moment = ms;
    }
    return moment;
}

// Four two-pole band-passes an octave wide in a row: R. Bristow-Johnson, "Cookbook formulae for audio EQ
// biquad filter coefficients".
Samples octave(Samples x, double hz) {
    const double w = 2.0 * std::numbers::pi * hz / kRateHz, alpha = std::sin(w) / (2.0 * 1.414);
    for (int pass = 0; pass < 4; ++pass) {
        double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;
        for (double& sample : x) {
            const double y =
                (alpha * (sample - x2) + 2.0 * std::cos(w) * y1 - (1.0 - alpha) * y2) / (1.0 + alpha);
            x2 = x1, x1 = sample, y2 = y1, y1 = y;
            sample = y;
        }
    }
    return x;
}

// From the slope between -5 and -35 dB of the energy still to come (M. R. Schroeder, J. Acoust. Soc. Am. 37,
// 1965).
double t60(double hz) {
    const Samples band = octave(response(), hz);
    Samples toCome(band.size());
    double energy = 0.0;
    for (std::size_t n = band.size(); n-- > 0;)
        toCome[n] = energy += band[n] * band[n];
    double sx = 0.0, sy = 0.0, sxx = 0.0, sxy = 0.0, count = 0.0;
    for (std::size_t n = 0; n < band.size(); n += 10) {
        const double level = 10.0 * std::log10(std::fmax(toCome[n] / toCome[0], 1e-20));
        if (level > -5.0 || level < -35.0) continue;
        const double t = static_cast<double>(n) / kRateHz;
        sx += t, sy += level, sxx += t * t, sxy += t * level, count += 1.0;
    }
    return -60.0 * (count * sxx - sx * sx) / (count * sxy - sx * sy);
}

// J. S. Abel, P. Huang, "A simple, robust measure of reverberation echo density", AES 121, 2006: the share of
// samples beyond one standard deviation in a Hann window of 30 ms, over a Gaussian's 0.3173.
double echoDensity(double seconds) {
    const int half = 661;
    double weights = 0.0, power = 0.0, outside = 0.0;
    for (int pass = 0; pass < 2; ++pass) {
        for (int i = -half; i <= half; ++i) {
            const double weight = 0.5 + 0.5 * std::cos(std::numbers::pi * i / (half + 1));
            const double x = response()[at(seconds) + static_cast<std::size_t>(half + i) - half];
            if (pass == 0) {
                weights += weight;
                power += weight * x * x;
            } else if (std::abs(x) > std::sqrt(power / weights)) {
                outside += weight;
            }
        }
    }
    return outside / weights / 0.3173105;
}

TEST(SpringTank, IsOneChannelOf551250SamplesAt44100HzIn24Bits) {
    EXPECT_EQ(recording().info.samplerate, 44100);
    EXPECT_EQ(recording().info.channels, 1);
    EXPECT_EQ(recording().info.frames, 551250);
    EXPECT_EQ(recording().info.format & SF_FORMAT_SUBMASK, SF_FORMAT_PCM_24);
    EXPECT_LT(peak(), 1.0);
    EXPECT_GT(peak(), 0.05);
}

TEST(SpringTank, TheFirstEchoComesAfter33To45Ms) {
    const double loud = 0.1 * peak();
    std::size_t first = 0;
    while (std::abs(response()[first]) < loud)
        ++first;
    EXPECT_GE(static_cast<double>(first) / kRateHz, 0.033);
    EXPECT_LE(static_cast<double>(first) / kRateHz, 0.045);
}

TEST(SpringTank, NothingComesBeforeAWaveHasCrossed) {
    for (std::size_t n = 0; n < at(0.030); ++n)
        ASSERT_EQ(response()[n], 0.0) << n;
}

TEST(SpringTank, HigherFrequenciesArriveLater) {
    EXPECT_NEAR(arrivalMs(1000.0), 35.0, 1.0);
    EXPECT_NEAR(arrivalMs(3600.0), 44.0, 1.0);
    double before = 0.0;
    for (double hz : {500.0, 1000.0, 2000.0, 3000.0, 3600.0}) {
        EXPECT_GT(arrivalMs(hz), before) << hz;
        before = arrivalMs(hz);
    }
}

TEST(SpringTank, DecaysFasterTowardsTheTop) {
    EXPECT_GE(t60(500.0), 2.5);
    EXPECT_LE(t60(500.0), 3.0);
    EXPECT_LT(t60(4000.0), 2.0);
    EXPECT_GT(t60(1000.0), t60(2000.0));
    EXPECT_GT(t60(2000.0), t60(4000.0));
}

TEST(SpringTank, IsBelowMinus90DbBeforeItsEnd) {
    double largest = 0.0;
    for (std::size_t n = at(6.0); n < response().size(); ++n)
        largest = std::fmax(largest, std::abs(response()[n]));
    EXPECT_LT(largest, peak() * std::pow(10.0, -90.0 / 20.0));
    EXPECT_EQ(response().back(), 0.0);
}

TEST(SpringTank, EchoesAreAsDenseAsNoiseByHalfASecond) {
    EXPECT_LT(echoDensity(0.1), 0.9);
    EXPECT_GE(echoDensity(0.5), 0.9);
    double sum = 0.0;
    for (int i = 0; i < 20; ++i)
        sum += echoDensity(0.5 + 0.05 * i);
    EXPECT_GE(sum / 20.0, 0.9);
}

}  // namespace
