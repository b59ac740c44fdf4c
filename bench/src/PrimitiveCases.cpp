#include <algorithm>
#include <complex>
#include <cstring>

#include "InPlaceCase.h"
#include "algorithms/amp/CubicSplineDistortionMinMax.h"
#include "algorithms/amp/PlanarHighPass.h"
#include "math/BqHighShelf.h"
#include "math/BqPeak.h"
#include "math/BqTonestack.h"
#include "math/FirstOrderShelf.h"
#include "math/OnePoleHighPass.h"
#include "math/OnePoleRamp.h"
#include "math/PushbuttonBqHighShelf.h"
#include "math/SVBell.h"
#include "math/SVLpf.h"
#include "math/UpDownSampler.h"
#include "math/fft/AlignedFloats.h"
#include "math/fft/RealFft.h"
#include "tables/ArvelReverb65Curves.h"

namespace bench {
namespace {

constexpr int kBlock = kBlockLength;
constexpr float kRate = kSampleRateHz;

struct UpAndDown {
    UpAndDown(int rate, int length)
        : sampler(kBlock, rate, length), planes(static_cast<std::size_t>(sampler.planesLength())) {}
    void process(float* samples) {
        sampler.upToPlanes(samples, planes.data());
        sampler.downFromPlanes(planes.data(), samples);
    }
    UpDownSampler sampler;
    fft::AlignedFloats planes;
};

// The three planes of a block through a valve's curve.
struct Transfer {
    void process(float* samples) {
        for (int p = 0; p < 3; ++p)
            std::memcpy(planes + p * kBlock, samples, kBlock * sizeof(float));
        curve.process(planes);
    }
    CubicSplineDistortionMinMax curve{3 * kBlock,
                                      10.0f,
                                      100.1697f,
                                      300.4954f,
                                      tables::kArvelReverb65NormalStage1.segments,
                                      tables::kArvelReverb65NormalStage1.breakpoints};
    alignas(64) float planes[3 * kBlock];
};

// One forward and one inverse transform a block, as the product plans them.
struct TransformPair {
    explicit TransformPair(int size)
        : transform(size), time(static_cast<std::size_t>(size)), bins(static_cast<std::size_t>(size) + 2) {}
    void process(float* samples) {
        std::copy_n(samples, kBlock, time.data());
        auto* spectrum = reinterpret_cast<std::complex<float>*>(bins.data());
        transform.forward(time.data(), spectrum);
        transform.inverse(spectrum, time.data());
    }
    fft::RealFft transform;
    fft::AlignedFloats time;
    fft::AlignedFloats bins;
};

// A gain on its way from block to block.
struct MovingGain {
    void process(float* samples) {
        for (int n = 0; n < kBlock; ++n)
            samples[n] *= ramp.tick();
    }
    OnePoleRamp ramp{0.02f, kRate};
};

}  // namespace

std::vector<NamedCase> primitiveCases() {
    return {
        {"up_down_sampler_3_10", [] { return block(std::make_unique<UpAndDown>(3, 10), 1.0f); }},
        {"up_down_sampler_5_10", [] { return block(std::make_unique<UpAndDown>(5, 10), 1.0f); }},
        {"transfer_curve_3x", [] { return block(std::make_unique<Transfer>(), kFullScaleVolts); }},
        {"planar_high_pass", [] { return samples(std::make_unique<PlanarHighPass>(5.0f, kRate), 1.0f); }},
        {"one_pole_high_pass", [] { return samples(std::make_unique<OnePoleHighPass>(5.0f, kRate), 1.0f); }},
        {"first_order_shelf",
         [] { return block(std::make_unique<FirstOrderShelf>(kBlock, kRate, 0.0f, 5.0f, 5000.0f), 1.0f); }},
        {"bq_peak", [] { return samples(std::make_unique<BqPeak>(6.9f, 74.5f, 1.5f, kRate), 1.0f); }},
        {"bq_high_shelf",
         [] { return samples(std::make_unique<BqHighShelf>(6.0f, 9000.0f, 0.7f, kRate), 1.0f); }},
        {"bq_tonestack",
         [] {
             return samples(std::make_unique<BqTonestack>(3.0f, 0.0f, -3.0f, 300.0f, 3000.0f, kRate), 1.0f);
         }},
        {"pushbutton_bq_high_shelf",
         [] {
             return block(std::make_unique<PushbuttonBqHighShelf>(kBlock, kRate, 6.0f, 3000.0f, 0.7f), 1.0f);
         }},
        {"sv_bell", [] { return samples(std::make_unique<SVBell>(6.0f, 1000.0f, 1.0f, kRate), 1.0f); }},
        {"sv_lpf", [] { return samples(std::make_unique<SVLpf>(0.0f, 5000.0f, 0.7f, kRate), 1.0f); }},
        {"one_pole_ramp",
         [] {
             return inPlace(
                 std::make_unique<MovingGain>(), 1.0f,
                 [](MovingGain& g, float* samples) { g.process(samples); },
                 [](MovingGain& g, int turn) { g.ramp.setTarget(static_cast<float>(turn % 2)); });
         }},
        {"fft_512_pair", [] { return block(std::make_unique<TransformPair>(512), 1.0f); }},
        {"fft_8192_pair", [] { return block(std::make_unique<TransformPair>(8192), 1.0f); }},
    };
}

const std::vector<NamedCase>& cases() {
    static const std::vector<NamedCase> kCases = [] {
        std::vector<NamedCase> all = ampCases();
        for (auto&& more : {primitiveCases(), modulationCases(), reverbCases(), convolutionCases()})
            all.insert(all.end(), more.begin(), more.end());
        return all;
    }();
    return kCases;
}

}  // namespace bench
