#include "algorithms/amp/CubicSplineDistortionMinMax.h"

#include <algorithm>
#include <limits>

#include "utility/Log.h"

namespace {

int segmentOf(const float (&breakpoints)[7], double x) {
    int index = 0;
    for (const float breakpoint : breakpoints)
        index += breakpoint < x;
    return index;
}

// Where a segment's polynomial is developed: 0 if the segment holds it, else the end nearer to 0. There the
// cubic's float rounding is smallest where the signal is.
double centreOf(const float (&breakpoints)[7], int segment) {
    const double low = segment > 0 ? breakpoints[segment - 1] : -1.0;
    const double high = segment < 7 ? breakpoints[segment] : 1.0;
    return std::clamp(0.0, low, high);
}

}  // namespace

double evaluateEightSegments(const float (&segments)[8][4], const float (&breakpoints)[7], double x) {
    const auto& [a, b, c, d] = segments[segmentOf(breakpoints, x)];
    return ((a * x + b) * x + c) * x + d;
}

CubicSplineDistortionMinMax::CubicSplineDistortionMinMax(int length, float inputRange, float outputMin,
                                                         float outputMax, const float (&segments)[8][4],
                                                         const float (&breakpoints)[7], ZeroInput zeroInput)
    : length_(length), inputRange_(inputRange), kernels_(&fft::vectorKernels()) {
    const double half = (static_cast<double>(outputMax) - outputMin) * 0.5;
    const double restOnCurve = evaluateEightSegments(segments, breakpoints, 0.0);
    // Where the curve crosses zero volts: at its rest point, or where the limits put it. Subtracted before
    // the scaling, so that the segment about 0 ends in a constant of exactly 0.
    const double zeroOnCurve = zeroInput == ZeroInput::Removed ? restOnCurve : -1.0 - outputMin / half;

    for (int i = 0; i < 8; ++i) {
        const auto& [a, b, c, d] = segments[i];
        const double m = centreOf(breakpoints, i);
        // Taylor's coefficients of the cubic about m, scaled to volts.
        curve_.breakpoints[i] = i < 7 ? breakpoints[i] : std::numeric_limits<float>::infinity();
        curve_.centre[i] = static_cast<float>(m);
        curve_.c3[i] = static_cast<float>(a * half);
        curve_.c2[i] = static_cast<float>((3.0 * a * m + b) * half);
        curve_.c1[i] = static_cast<float>(((3.0 * a * m + 2.0 * b) * m + c) * half);
        curve_.c0[i] = static_cast<float>((((a * m + b) * m + c) * m + d - zeroOnCurve) * half);
    }
    zeroInputOutput_ = static_cast<float>(half + restOnCurve * half + outputMin);
    tvk::log::debug("CubicSplineDistortionMinMax", "ziOutput is %f", static_cast<double>(zeroInputOutput_));
}

void CubicSplineDistortionMinMax::process(float* buffer) {
    process(buffer, buffer);
}

void CubicSplineDistortionMinMax::process(const float* in, float* out) const {
    kernels_->cubicSegments(curve_, inputRange_, in, out, length_);
}
