#include "Cases.h"

#include <algorithm>
#include <complex>
#include <cstring>
#include <utility>

#include "algorithms/amp/OutputSoftClipper.h"
#include "algorithms/amp/PlanarHighPass.h"
#include "algorithms/amp/ValveStage.h"
#include "math/BqPeak.h"
#include "math/OnePoleHighPass.h"
#include "math/UpDownSampler.h"
#include "math/fft/RealFft.h"
#include "tables/ArvelReverb65Curves.h"

namespace bench {
namespace {

// Works in place on a copy of the guitar's block, scaled to volts.
template <typename Unit, typename Process>
class InPlaceCase : public Case {
public:
    InPlaceCase(std::unique_ptr<Unit> unit, float inputVolts, Process process)
        : unit_(std::move(unit)), inputVolts_(inputVolts), process_(process) {}

    void process(const float* in, int index) override {
        for (int n = 0; n < kBlockLength; ++n)
            block_[n] = in[n] * inputVolts_;
        process_(*unit_, block_, index);
    }

private:
    std::unique_ptr<Unit> unit_;
    float inputVolts_;
    Process process_;
    alignas(64) float block_[kBlockLength];
};

template <typename Unit, typename Process>
std::unique_ptr<Case> inPlace(std::unique_ptr<Unit> unit, float inputVolts, Process process) {
    return std::make_unique<InPlaceCase<Unit, Process>>(std::move(unit), inputVolts, process);
}

template <typename Unit>
std::unique_ptr<Case> inPlace(std::unique_ptr<Unit> unit, float inputVolts) {
    return inPlace(std::move(unit), inputVolts, [](Unit& u, float* block, int) { u.process(block); });
}

struct Sampler {
    Sampler(int rate, int length)
        : updown(kBlockLength, rate, length), planes(static_cast<std::size_t>(updown.planesLength())) {}
    void process(float* block) {
        updown.upToPlanes(block, planes.data());
        updown.downFromPlanes(planes.data(), block);
    }
    UpDownSampler updown;
    fft::AlignedFloats planes;
};

// A block's worth of oversampled samples through the curve alone.
struct Transfer {
    Transfer()
        : curve(3 * kBlockLength, 10.0f, 100.1697f, 300.4954f, tables::kArvelReverb65NormalStage1.segments,
                tables::kArvelReverb65NormalStage1.breakpoints) {}
    void process(float* block) {
        for (int p = 0; p < 3; ++p)
            std::memcpy(planes + p * kBlockLength, block, kBlockLength * sizeof(float));
        curve.process(planes);
    }
    CubicSplineDistortionMinMax curve;
    alignas(64) float planes[3 * kBlockLength];
};

struct Transform {
    explicit Transform(int size)
        : fft(size), time(static_cast<std::size_t>(size)), bins(static_cast<std::size_t>(size) + 2) {}
    void process(float* block) {
        std::memcpy(time.data(), block,
                    static_cast<std::size_t>(std::min(fft.size(), kBlockLength)) * sizeof(float));
        auto* spectrum = reinterpret_cast<std::complex<float>*>(bins.data());
        fft.forward(time.data(), spectrum);
        fft.inverse(spectrum, time.data());
    }
    fft::RealFft fft;
    fft::AlignedFloats time;
    fft::AlignedFloats bins;
};

std::vector<NamedCase> makeCases() {
    using tables::kArvelReverb65NormalStage1;
    const float volts = kFullScaleVolts;
    return {
        {"valve_stage",
         [=] {
             return inPlace(std::make_unique<ValveStage>(kBlockLength, kSampleRateHz, 10.0f, 100.1697f,
                                                         300.4954f, kArvelReverb65NormalStage1),
                            volts);
         }},
        {"output_clipper",
         [] {
             return inPlace(std::make_unique<OutputSoftClipper>(kBlockLength, 0.0f, kSampleRateHz), 4.0f);
         }},
        {"up_down_sampler_3_10", [=] { return inPlace(std::make_unique<Sampler>(3, 10), volts); }},
        {"up_down_sampler_5_10", [=] { return inPlace(std::make_unique<Sampler>(5, 10), volts); }},
        {"transfer_curve_3x", [=] { return inPlace(std::make_unique<Transfer>(), volts); }},
        {"one_pole_high_pass",
         [=] {
             return inPlace(std::make_unique<OnePoleHighPass>(5.0f, kSampleRateHz), volts,
                            [](OnePoleHighPass& f, float* block, int) { f.process(block, kBlockLength); });
         }},
        {"planar_high_pass",
         [=] {
             return inPlace(std::make_unique<PlanarHighPass>(5.0f, kSampleRateHz), volts,
                            [](PlanarHighPass& f, float* block, int) { f.process(block, kBlockLength); });
         }},
        {"fft_512_pair", [=] { return inPlace(std::make_unique<Transform>(512), volts); }},
        {"fft_8192_pair", [=] { return inPlace(std::make_unique<Transform>(8192), volts); }},
    };
}

}  // namespace

const std::vector<NamedCase>& cases() {
    static const std::vector<NamedCase> kCases = makeCases();
    return kCases;
}

}  // namespace bench
