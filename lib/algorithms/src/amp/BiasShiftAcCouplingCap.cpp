#include "algorithms/amp/BiasShiftAcCouplingCap.h"

#include <cmath>

#include "utility/Log.h"

namespace {

float decayCoefficient(double tauSeconds, double sampleRateHz) {
    return static_cast<float>(std::exp(-1.0 / (tauSeconds * sampleRateHz)));
}

}  // namespace

BiasShiftAcCouplingCap::BiasShiftAcCouplingCap(float gain, int length, float kExcursion, float kRecovery,
                                               float cFarads, float rSourceOhms, float rGridOhms,
                                               float rLeakOhms, float thresholdVolts, float sampleRateHz)
    : gain_(gain), length_(length), threshold_(thresholdVolts) {
    const double gridAndLeak = static_cast<double>(rGridOhms) * rLeakOhms / (rGridOhms + rLeakOhms);
    const double excursionTau = (gridAndLeak + rSourceOhms) * kExcursion * cFarads;
    const double recoveryTau = (static_cast<double>(rLeakOhms) + rSourceOhms) * kRecovery * cFarads;
    tvk::log::debug("BiasShiftAcCouplingCap", "excursionTau=%f, recoveryTau=%f", excursionTau, recoveryTau);
    excursionCoef_ = decayCoefficient(excursionTau, sampleRateHz);
    recoveryCoef_ = decayCoefficient(recoveryTau, sampleRateHz);
    chargeFeedback_ = excursionCoef_ - (1.0f - excursionCoef_);
}

void BiasShiftAcCouplingCap::process(const float* in, float* out) {
    BiasShiftAcCouplingCap run = *this;
    for (int n = 0; n < length_; ++n)
        out[n] = run.tick(in[n]);
    state_ = run.state_;
}
