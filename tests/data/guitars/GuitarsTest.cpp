#include <algorithm>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <numbers>
#include <numeric>
#include <sndfile.h>
#include <string>
#include <vector>

namespace {

constexpr double kRateHz = 44100.0;

struct Recording {
    SF_INFO info{};
    std::vector<double> samples;
};

Recording load(const std::string& name) {
    Recording recording;
    const std::string path = std::string(TARVEK_GUITARS) + "/" + name + ".wav";
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &recording.info);
    if (!file) return recording;
    recording.samples.resize(static_cast<std::size_t>(recording.info.frames * recording.info.channels));
    sf_readf_double(file, recording.samples.data(), recording.info.frames);
    sf_close(file);
    return recording;
}

class Guitars : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        recording = load(GetParam());
        ASSERT_FALSE(recording.samples.empty());
    }

    Recording recording;
};

double db(double ratio) {
    return 20.0 * std::log10(ratio);
}

double largest(const std::vector<double>& x) {
    return std::abs(
        *std::max_element(x.begin(), x.end(), [](double a, double b) { return std::abs(a) < std::abs(b); }));
}

// Two-pole band-pass a third octave wide with 0 dB at its peak: R. Bristow-Johnson, "Cookbook formulae for
// audio EQ biquad filter coefficients".
std::vector<double> bandPass(const std::vector<double>& x, double hz) {
    const double w = 2.0 * std::numbers::pi * hz / kRateHz, alpha = std::sin(w) / (2.0 * 4.3);
    std::vector<double> out;
    out.reserve(x.size());
    double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;
    for (double in : x) {
        const double y = (alpha * (in - x2) + 2.0 * std::cos(w) * y1 - (1.0 - alpha) * y2) / (1.0 + alpha);
        x2 = x1, x1 = in, y2 = y1, y1 = y;
        out.push_back(y);
    }
    return out;
}

// Level of a band in dB per hertz but for a constant. Three filters in series, since one alone would let the
// strong low harmonics through its skirt.
double bandDb(const std::vector<double>& x, double hz) {
    const std::vector<double> band = bandPass(bandPass(bandPass(x, hz), hz), hz);
    return 10.0 * std::log10(std::inner_product(band.begin(), band.end(), band.begin(), 0.0) / hz);
}

TEST_P(Guitars, AreMono24BitAtTheEnginesRateAndEightToTenSecondsLong) {
    EXPECT_EQ(recording.info.samplerate, 44100);
    EXPECT_EQ(recording.info.channels, 1);
    EXPECT_EQ(recording.info.format & SF_FORMAT_SUBMASK, SF_FORMAT_PCM_24);
    EXPECT_EQ(recording.info.format & SF_FORMAT_TYPEMASK, SF_FORMAT_WAV);
    EXPECT_GE(static_cast<double>(recording.info.frames) / kRateHz, 8.0);
    EXPECT_LE(static_cast<double>(recording.info.frames) / kRateHz, 10.0);
}

TEST_P(Guitars, PeakAtMinus12DbfsWithoutClipping) {
    const double peak = largest(recording.samples);
    EXPECT_NEAR(db(peak), -12.0, 0.01);
    // A clipped wave stays at its peak; a played one touches it once.
    EXPECT_LE(std::count_if(recording.samples.begin(), recording.samples.end(),
                            [&](double x) { return std::abs(x) > 0.999 * peak; }),
              3);
}

TEST_P(Guitars, CarryNoDc) {
    const double mean = std::accumulate(recording.samples.begin(), recording.samples.end(), 0.0) /
                        static_cast<double>(recording.samples.size());
    EXPECT_LT(std::abs(mean), 1e-6);
}

TEST_P(Guitars, BeginAndEndInSilence) {
    EXPECT_LT(largest({recording.samples.begin(), recording.samples.begin() + 2205}), 1e-6);
    EXPECT_LT(largest({recording.samples.end() - 20, recording.samples.end()}), 1e-4);
}

// Level plays on between the strokes: no gap longer than a quarter second before the last stroke dies away.
TEST_P(Guitars, PlayThroughout) {
    const auto& x = recording.samples;
    for (std::size_t begin = 8820; begin + 11025 < static_cast<std::size_t>(8.5 * kRateHz); begin += 11025) {
        const double energy = std::inner_product(x.begin() + static_cast<std::ptrdiff_t>(begin),
                                                 x.begin() + static_cast<std::ptrdiff_t>(begin) + 11025,
                                                 x.begin() + static_cast<std::ptrdiff_t>(begin), 0.0);
        EXPECT_GT(10.0 * std::log10(energy / 11025.0), -50.0)
            << "at " << static_cast<double>(begin) / kRateHz;
    }
}

// A magnetic pickup with its cable holds the level up to its resonance between 3 and 5 kHz, then falls by two
// poles on top of what the strings lose.
TEST_P(Guitars, HaveThePickupsResonanceAndRollOff) {
    const auto& x = recording.samples;
    const double towards = bandDb(x, 3600.0) - bandDb(x, 1800.0);
    const double beyond = bandDb(x, 9000.0) - bandDb(x, 4500.0);
    EXPECT_GT(towards, -15.0);
    EXPECT_LT(beyond, -24.0);
    EXPECT_LT(bandDb(x, 12000.0), bandDb(x, 400.0) - 60.0);
}

INSTANTIATE_TEST_SUITE_P(Pieces, Guitars, testing::Values("clean_chords", "lead_line", "hard_riff"),
                         [](const auto& piece) { return std::string(piece.param); });

// Pitch in Hz of the samples from begin to end seconds: the autocorrelation's peak between two lags, refined
// by a parabola.
double pitchHz(const std::vector<double>& x, double begin, double end, double lowHz, double highHz) {
    const auto first = static_cast<std::size_t>(begin * kRateHz),
               last = static_cast<std::size_t>(end * kRateHz);
    const auto correlation = [&](std::size_t lag) {
        double sum = 0.0, one = 0.0, other = 0.0;
        for (std::size_t n = first; n + lag < last; ++n) {
            sum += x[n] * x[n + lag];
            one += x[n] * x[n];
            other += x[n + lag] * x[n + lag];
        }
        return sum / std::sqrt(one * other);
    };
    std::size_t best = 0;
    double most = -1.0;
    for (auto lag = static_cast<std::size_t>(kRateHz / highHz);
         lag <= static_cast<std::size_t>(kRateHz / lowHz); ++lag)
        if (const double value = correlation(lag); value > most) most = value, best = lag;
    const double before = correlation(best - 1), after = correlation(best + 1);
    const double shift = 0.5 * (before - after) / (before - 2.0 * most + after);
    return kRateHz / (static_cast<double>(best) + shift);
}

double cents(double hz, double midi) {
    return 1200.0 * std::log2(hz / 440.0) - 100.0 * (midi - 69.0);
}

// The line opens with D4 on the third string, bent up by a whole tone within a quarter second.
TEST(LeadLine, BendsAWholeToneUpAndArrivesInTune) {
    const Recording lead = load("lead_line");
    ASSERT_FALSE(lead.samples.empty());
    EXPECT_NEAR(cents(pitchHz(lead.samples, 0.36, 0.58, 250.0, 400.0), 64.0), 0.0, 8.0);
}

// Its second note is an unbent E4, on the beat and a half.
TEST(LeadLine, PlaysFrettedNotesInTune) {
    const Recording lead = load("lead_line");
    ASSERT_FALSE(lead.samples.empty());
    EXPECT_NEAR(cents(pitchHz(lead.samples, 1.12, 1.38, 250.0, 400.0), 64.0), 0.0, 8.0);
}

}  // namespace
