#include "algorithms/amp/ArvelReverb65PowerAmp.h"

#include "Scale.h"
#include "tables/ArvelReverb65Curves.h"
#include "utility/Multiversion.h"

namespace {

constexpr int kRate = 3;
constexpr int kFilterLength = 10;
constexpr float kHighPassHz = 5.0f;

// Gains of the linear network between the valves.
constexpr float kInputGain = 0.37800714f;
constexpr float kInverterGainA = 1.2445146f;
constexpr float kInverterGainB = 1.2119927f;
constexpr float kGridGain = 0.53088444f;
constexpr float kOutputGain = 1.3489629f;

// Volts at the transformer for the rest current of both valves.
constexpr float kPairRestVolts = 0.42840672f;

BiasShiftAcCouplingCap makeCoupling(int length, float rSourceOhms, float oversampledRate) {
    constexpr float cFarads = 1e-7f;
    constexpr float rGridOhms = 1500.0f;
    constexpr float rLeakOhms = 220000.0f;
    constexpr float gridConductionVolts = 50.0f;
    return {
        1.0f,           length, 1.0f, 1.0f, cFarads, rSourceOhms, rGridOhms, rLeakOhms, gridConductionVolts,
        oversampledRate};
}

CubicSplineDistortionMinMax makeInverter(int length, float outputMin, float outputMax,
                                         const tables::ValveCurve& curve) {
    return {length, 10.0f, outputMin, outputMax, curve.segments, curve.breakpoints};
}

CubicSplineDistortionMinMax makeOutputValve(int length, float outputMin, float outputMax,
                                            const tables::ValveCurve& curve) {
    using enum CubicSplineDistortionMinMax::ZeroInput;
    return {length, 50.0f, outputMin, outputMax, curve.segments, curve.breakpoints, Kept};
}

// From the inverter's plates to the grids of the output valves, in the order of time over the planes. The
// legs share a loop since each is a recursion that leaves the processor waiting.
TARVEK_MULTIVERSION
void couple(BiasShiftAcCouplingCap& couplingA, BiasShiftAcCouplingCap& couplingB, float* legA, float* legB,
            int stride, int length) {
    BiasShiftAcCouplingCap a = couplingA;
    BiasShiftAcCouplingCap b = couplingB;
    for (int n = 0; n < length; ++n) {
        for (int p = 0; p < kRate; ++p) {
            const int i = p * stride + n;
            const float plateA = legA[i] * kInverterGainA;
            const float plateB = legB[i] * kInverterGainB;
            legA[i] = (plateA - a.tick(plateA)) * kGridGain;
            legB[i] = (plateB - b.tick(plateB)) * kGridGain;
        }
    }
    couplingA = a;
    couplingB = b;
}

TARVEK_MULTIVERSION
void sumAtTransformer(float* a, const float* b, int length) {
    for (int n = 0; n < length; ++n)
        a[n] = a[n] + b[n] + kPairRestVolts;
}

}  // namespace

ArvelReverb65PowerAmp::ArvelReverb65PowerAmp(int blockLength, float sampleRate)
    : blockLength_(blockLength),
      sampler_(blockLength, kRate, kFilterLength),
      phaseInverterA_(
          makeInverter(sampler_.planesLength(), 119.4794f, 366.59479f, tables::kArvelReverb65PhaseInverterA)),
      phaseInverterB_(
          makeInverter(sampler_.planesLength(), 106.0296f, 358.5621f, tables::kArvelReverb65PhaseInverterB)),
      inverterHighPassA_(kHighPassHz, kRate * sampleRate, kRate),
      inverterHighPassB_(kHighPassHz, kRate * sampleRate, kRate),
      couplingA_(makeCoupling(kRate * blockLength, 9620.0f, kRate * sampleRate)),
      couplingB_(makeCoupling(kRate * blockLength, 9820.0f, kRate * sampleRate)),
      outputValveA_(makeOutputValve(sampler_.planesLength(), -18.85376f, -0.09345604f,
                                    tables::kArvelReverb65OutputValveA)),
      outputValveB_(makeOutputValve(sampler_.planesLength(), 0.08957769f, 18.84547f,
                                    tables::kArvelReverb65OutputValveB)),
      outputHighPass_(kHighPassHz, sampleRate),
      legA_(static_cast<std::size_t>(sampler_.planesLength())),
      legB_(legA_.size()) {}

void ArvelReverb65PowerAmp::process(float* buffer) {
    const int stride = sampler_.planeStride();
    float* const a = legA_.data();
    float* const b = legB_.data();

    sampler_.upToPlanes(buffer, a);
    scale(a, kInputGain, sampler_.planesLength());

    phaseInverterB_.process(a, b);
    phaseInverterA_.process(a);
    inverterHighPassA_.process(a, blockLength_, stride);
    inverterHighPassB_.process(b, blockLength_, stride);
    couple(couplingA_, couplingB_, a, b, stride, blockLength_);
    outputValveA_.process(a);
    outputValveB_.process(b);
    sumAtTransformer(a, b, sampler_.planesLength());

    sampler_.downFromPlanes(a, buffer);
    scale(buffer, kOutputGain, blockLength_);
    outputHighPass_.process(buffer, blockLength_);
}
