#include <stdexcept>

#include "InPlaceCase.h"
#include "algorithms/reverb/MeasuredSpringTank.h"
#include "algorithms/reverb/SpringBase.h"
#include "algorithms/reverb/SpringTankResponse.h"
#include "math/BiquadCascade.h"
#include "utility/BackgroundJobs.h"

namespace bench {
namespace {

// Volts that the second valve sends to the tank on a full-scale guitar with its volume up.
constexpr float kTankVolts = 60.0f;

// The tank as its own thread runs it. The tail runs beside it on its helper; between turns it gets the time
// that the real block rate would leave it.
class TankFront : public Case {
public:
    TankFront() : tank_(kBlockLength, kSampleRateHz, response()) { tank_.setLevel(1.0f, true); }

    void process(const float* in) override {
        for (int n = 0; n < kBlockLength; ++n)
            in_[n] = in[n] * kTankVolts;
        tank_.process(in_, out_);
    }

    void control(int turn) override {
        tvk::BackgroundJobs::waitUntilIdle();
        // The guitar is 21.5 heads long. Half a head more at its start lets every block meet the same stage
        // of the scheme in each repeat, so that the dear ones stay visible.
        if (turn != 0) return;
        for (int block = 0; block < SpringTankResponse::kHeadLength / kBlockLength / 2; ++block)
            tank_.process(in_, out_);
        tvk::BackgroundJobs::waitUntilIdle();
    }

private:
    static std::shared_ptr<const PreparedResponse> response() {
        SpringTankResponse::setFile(TARVEK_BENCH_TANK);
        auto prepared = SpringTankResponse::get(kSampleRateHz);
        if (!prepared) throw std::runtime_error("no spring tank response at " TARVEK_BENCH_TANK);
        return prepared;
    }

    MeasuredSpringTank tank_;
    alignas(64) float in_[kBlockLength] = {};
    alignas(64) float out_[kBlockLength] = {};
};

// The thirty sections of the algorithmic tank's loop.
std::unique_ptr<Case> dispersion() {
    return inPlace(std::make_unique<BiquadCascade>(rvb::kSpringVoicing65.dispersion, 30), 1.0f,
                   [](BiquadCascade& c, float* samples) { c.process(samples, samples, kBlockLength); });
}

std::unique_ptr<Case> springBase() {
    return inPlace(std::make_unique<rvb::SpringBase>(rvb::kSpringVoicing65, kBlockLength, kSampleRateHz),
                   1.0f, [](rvb::SpringBase& tank, float* samples) {
                       float right[kBlockLength];
                       tank.process(samples, samples, samples, right, kBlockLength);
                   });
}

}  // namespace

std::vector<NamedCase> reverbCases() {
    return {
        {"tank_front", [] { return std::make_unique<TankFront>(); }},
        {"spring_base", springBase},
        {"spring_dispersion", dispersion},
    };
}

}  // namespace bench
