// What makes the factory cabinets good enough, on the files themselves.
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <sndfile.h>
#include <string>
#include <vector>

#include "Spectrum.h"

namespace {

constexpr double kRateHz = 44100.0;
constexpr std::size_t kSamples = 4096;
constexpr std::size_t kTransform = 32768;
constexpr const char* kPlaces[] = {"Near-Center", "Near-Edge", "Off-Axis", "Far"};

struct Response {
    SF_INFO info{};
    std::vector<float> samples;
};

Response load(const std::string& path) {
    Response response;
    SNDFILE* const file =
        sf_open((std::string(TARVEK_PRODUCT_ROOT) + "/" + path).c_str(), SFM_READ, &response.info);
    if (!file) return response;
    response.samples.resize(static_cast<std::size_t>(response.info.frames * response.info.channels));
    sf_readf_float(file, response.samples.data(), response.info.frames);
    sf_close(file);
    return response;
}

std::string pathOf(const std::string& cabinet, const std::string& place) {
    return "factoryIRs/" + cabinet + "-SlatePanel-IRs/" + cabinet + "-" + place + ".wav";
}

// Gains in dB at frequencies that stand as densely in every octave, 96 each.
struct Curve {
    static constexpr int kPerOctave = 96;
    std::vector<double> hz;
    std::vector<double> db;

    double mean() const {
        double sum = 0.0;
        for (const double x : db)
            sum += x;
        return sum / static_cast<double>(db.size());
    }
};

Curve curveOf(const std::vector<spectrum::Complex>& values, double fromHz, double toHz) {
    Curve curve;
    for (double hz = fromHz; hz <= toHz; hz *= std::exp2(1.0 / Curve::kPerOctave)) {
        const double bin = hz * kTransform / kRateHz;
        const auto below = static_cast<std::size_t>(bin);
        const double share = bin - static_cast<double>(below);
        const double gain = (1.0 - share) * std::abs(values[below]) + share * std::abs(values[below + 1]);
        curve.hz.push_back(hz);
        curve.db.push_back(20.0 * std::log10(gain));
    }
    return curve;
}

double largest(const std::vector<float>& samples, std::size_t from = 0) {
    double most = 0.0;
    for (std::size_t n = from; n < samples.size(); ++n)
        most = std::max(most, static_cast<double>(std::abs(samples[n])));
    return most;
}

class FactoryCabinets : public testing::TestWithParam<std::tuple<const char*, const char*>> {
protected:
    void SetUp() override {
        response = load(pathOf(std::get<0>(GetParam()), std::get<1>(GetParam())));
        ASSERT_FALSE(response.samples.empty());
        values = spectrum::ofSamples(response.samples, kTransform);
    }

    Response response;
    std::vector<spectrum::Complex> values;
};

TEST_P(FactoryCabinets, AreOneChannelOf4096SamplesAt24Bits) {
    EXPECT_EQ(response.info.channels, 1);
    EXPECT_EQ(response.info.samplerate, 44100);
    EXPECT_EQ(response.info.format, SF_FORMAT_WAV | SF_FORMAT_PCM_24);
    EXPECT_EQ(response.samples.size(), kSamples);
}

TEST_P(FactoryCabinets, NeverAmplifyAndUseTheirRange) {
    double most = 0.0;
    for (const spectrum::Complex& value : values)
        most = std::max(most, std::abs(value));
    EXPECT_LE(most, 1.0);
    EXPECT_GT(most, 0.9);
}

TEST_P(FactoryCabinets, HaveDecayedSixtyDecibelsBySample4000) {
    EXPECT_LT(largest(response.samples, 4000), 1e-3 * largest(response.samples));
}

TEST_P(FactoryCabinets, StayWithinTwelveDecibelsOfTheirMeanFrom100HzTo5kHz) {
    const Curve curve = curveOf(values, 100.0, 5000.0);
    const double mean = curve.mean();
    for (std::size_t i = 0; i < curve.db.size(); ++i)
        ASSERT_LE(std::abs(curve.db[i] - mean), 12.0) << curve.hz[i] << " Hz";
}

// A cone's modes: what is left of the curve without its mean over an octave around each place.
TEST_P(FactoryCabinets, HaveTheModalRippleOfACone) {
    const Curve curve = curveOf(values, 400.0, 5000.0);
    constexpr int kHalf = Curve::kPerOctave / 2;
    double power = 0.0;
    int count = 0;
    int turns = 0;
    const int size = static_cast<int>(curve.db.size());
    const auto at = [&](int i) { return curve.db[static_cast<std::size_t>(i)]; };
    for (int i = kHalf; i < size - kHalf; ++i, ++count) {
        double mean = 0.0;
        for (int k = -kHalf; k <= kHalf; ++k)
            mean += at(i + k) / (2 * kHalf + 1);
        power += (at(i) - mean) * (at(i) - mean);
        if ((at(i) - at(i - 1)) * (at(i + 1) - at(i)) < 0.0) ++turns;
    }
    EXPECT_GE(std::sqrt(power / count), 0.6);
    EXPECT_LE(std::sqrt(power / count), 4.0);
    EXPECT_GE(turns, 6);
}

TEST_P(FactoryCabinets, RollOffAbove5kHzAndBelowTheBoxsResonance) {
    const double mean = curveOf(values, 100.0, 5000.0).mean();
    EXPECT_LT(curveOf(values, 9500.0, 10500.0).mean(), mean - 12.0);
    EXPECT_LT(curveOf(values, 15000.0, 16000.0).mean(), mean - 24.0);
    EXPECT_LT(curveOf(values, 38.0, 42.0).mean(), mean - 12.0);
}

TEST_P(FactoryCabinets, AreOfMinimumPhase) {
    const std::vector<double> truth = spectrum::minimumPhase(values);
    const double most = largest(response.samples);
    for (std::size_t n = 0; n < kSamples; ++n)
        ASSERT_NEAR(response.samples[n], truth[n], 2e-3 * most) << n;
}

INSTANTIATE_TEST_SUITE_P(Each, FactoryCabinets,
                         testing::Combine(testing::Values("Arvel", "Corvin", "Lisko", "Sorrel"),
                                          testing::ValuesIn(kPlaces)),
                         [](const auto& instance) {
                             std::string name =
                                 std::string(std::get<0>(instance.param)) + std::get<1>(instance.param);
                             std::erase(name, '-');
                             return name;
                         });

class PlacesOfACabinet : public testing::TestWithParam<const char*> {};

TEST_P(PlacesOfACabinet, DifferByThreeDecibelsSomewhereFrom1To5kHzAtTheSameMeanLevel) {
    std::vector<Curve> curves;
    for (const char* const place : kPlaces)
        curves.push_back(curveOf(spectrum::ofSamples(load(pathOf(GetParam(), place)).samples, kTransform),
                                 1000.0, 5000.0));
    for (std::size_t a = 0; a < curves.size(); ++a) {
        for (std::size_t b = 0; b < a; ++b) {
            double most = 0.0;
            for (std::size_t i = 0; i < curves[a].db.size(); ++i)
                most = std::max(
                    most, std::abs(curves[a].db[i] - curves[a].mean() - curves[b].db[i] + curves[b].mean()));
            EXPECT_GE(most, 3.0) << kPlaces[a] << " and " << kPlaces[b];
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Each, PlacesOfACabinet, testing::Values("Arvel", "Corvin", "Lisko", "Sorrel"),
                         [](const auto& instance) { return instance.param; });

TEST(TestCabinets, TellTheTwoPositionsApart) {
    for (const auto& [name, passesLow] : {std::pair{"TestCabinet1", true}, {"TestCabinet2", false}}) {
        const Response response = load(std::string("IRs/") + name + ".wav");
        ASSERT_EQ(response.samples.size(), kSamples);
        EXPECT_EQ(response.info.samplerate, 44100);
        const std::vector<spectrum::Complex> values = spectrum::ofSamples(response.samples, kTransform);
        const double low = curveOf(values, 100.0, 500.0).mean();
        const double high = curveOf(values, 2000.0, 8000.0).mean();
        EXPECT_GT(passesLow ? low - high : high - low, 20.0);
        EXPECT_LT(largest(response.samples, 4000), 1e-3 * largest(response.samples));
    }
}

}  // namespace
