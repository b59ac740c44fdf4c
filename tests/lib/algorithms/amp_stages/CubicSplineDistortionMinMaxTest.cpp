#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "StageReference.h"
#include "algorithms/amp/CubicSplineDistortionMinMax.h"
#include "support/LogRecorder.h"

namespace {

using namespace stage_reference;
using ZeroInput = CubicSplineDistortionMinMax::ZeroInput;

CubicSplineDistortionMinMax make(const Transfer& t, int length) {
    return {length,
            static_cast<float>(t.inputRange),
            static_cast<float>(t.outputMin),
            static_cast<float>(t.outputMax),
            t.curve.segments,
            t.curve.breakpoints,
            t.keepsRest ? ZeroInput::Kept : ZeroInput::Removed};
}

class AmpCurve : public testing::TestWithParam<int> {
protected:
    Transfer transfer = ampTransfers().at(static_cast<std::size_t>(GetParam()));
};

INSTANTIATE_TEST_SUITE_P(All, AmpCurve, testing::Range(0, static_cast<int>(ampTransfers().size())));

TEST_P(AmpCurve, AgreesWithTheDoublePrecisionCubicWithinFloatRounding) {
    constexpr int kPoints = 40001;
    auto stage = make(transfer, kPoints);
    Signal in(kPoints);
    for (int n = 0; n < kPoints; ++n)
        in[static_cast<std::size_t>(n)] =
            static_cast<float>(transfer.inputRange * (-1.1 + 2.2 * n / (kPoints - 1)));
    Signal out = in;
    stage.process(out.data());
    // A few roundings of a value up to the swing, or up to the rest voltage where that stays in.
    const double span = std::max(transfer.outputMax - transfer.outputMin, std::abs(transfer.outputMax));
    for (std::size_t n = 0; n < in.size(); ++n)
        ASSERT_NEAR(out[n], transfer(in[n]), 4e-7 * span) << in[n];
}

TEST_P(AmpCurve, AgreesAtItsBreakpointsAndTheirNeighbours) {
    Signal in;
    for (const float breakpoint : transfer.curve.breakpoints) {
        const float volts = breakpoint * static_cast<float>(transfer.inputRange);
        in.insert(in.end(), {std::nextafter(volts, -100.0f), volts, std::nextafter(volts, 100.0f)});
    }
    Signal out = in;
    auto stage = make(transfer, static_cast<int>(in.size()));
    stage.process(out.data());
    const double span = std::max(transfer.outputMax - transfer.outputMin, std::abs(transfer.outputMax));
    for (std::size_t n = 0; n < in.size(); ++n)
        EXPECT_NEAR(out[n], transfer(in[n]), 4e-7 * span) << in[n];
}

TEST_P(AmpCurve, ZeroVoltsGiveExactlyZeroUnlessTheRestValueIsKept) {
    auto stage = make(transfer, 9);
    Signal block(9, 0.0f);
    stage.process(block.data());
    for (const float y : block) {
        if (transfer.keepsRest) {
            EXPECT_NEAR(y, transfer.rest(), 2e-6);
        } else {
            EXPECT_EQ(y, 0.0f);
        }
    }
}

TEST_P(AmpCurve, InputsFarBeyondTheRangeStayAtTheLimits) {
    const float infinity = std::numeric_limits<float>::infinity();
    const auto range = static_cast<float>(transfer.inputRange);
    Signal high{range, 1.001f * range, 1e6f * range, infinity};
    Signal low{-range, -1.001f * range, -1e6f * range, -infinity};
    auto stage = make(transfer, 4);
    stage.process(high.data());
    stage.process(low.data());
    for (const Signal& ends : {high, low}) {
        for (const float y : ends)
            EXPECT_EQ(y, ends[0]);
    }
    const double span = std::max(transfer.outputMax - transfer.outputMin, std::abs(transfer.outputMax));
    EXPECT_NEAR(high[0], transfer(range), 4e-7 * span);
    EXPECT_NEAR(low[0], transfer(-range), 4e-7 * span);
    if (&transfer.curve == &tables::kOutputSoftClip) return;  // flat below its limits
    const double rest = transfer.keepsRest ? 0.0 : transfer.rest();
    EXPECT_NEAR(std::min(high[0], low[0]) + rest, transfer.outputMin, 0.02);
    EXPECT_NEAR(std::max(high[0], low[0]) + rest, transfer.outputMax, 0.02);
}

TEST_P(AmpCurve, ZeroInputOutputIsTheRestVoltage) {
    EXPECT_NEAR(make(transfer, 1).zeroInputOutput(), transfer.rest(), 1e-7 * std::abs(transfer.rest()));
}

// Constant segments 0, 1/8 .. 7/8: the result names the segment.
tables::ValveCurve staircase() {
    tables::ValveCurve curve{{-0.75f, -0.5f, -0.25f, 0.0f, 0.25f, 0.5f, 0.75f}, {}};
    for (int i = 0; i < 8; ++i)
        curve.segments[i][3] = static_cast<float>(i) / 8.0f;
    return curve;
}

TEST(CubicSplineDistortionMinMax, AValueOnABreakpointFallsInTheLowerSegment) {
    const auto curve = staircase();
    CubicSplineDistortionMinMax stage(2, 8.0f, -1.0f, 1.0f, curve.segments, curve.breakpoints,
                                      ZeroInput::Kept);
    for (int i = 0; i < 7; ++i) {
        const float volts = curve.breakpoints[i] * 8.0f;
        const float above = i == 3 ? 1e-20f : std::nextafter(volts, 100.0f);
        float block[2] = {volts, above};
        stage.process(block);
        EXPECT_EQ(block[0], static_cast<float>(i) / 8.0f);
        EXPECT_EQ(block[1], static_cast<float>(i + 1) / 8.0f);
    }
}

TEST(CubicSplineDistortionMinMax, TheDoubleEvaluationChoosesSegmentsAsTheTreeDoes) {
    const auto curve = staircase();
    for (float x = -1.0f; x <= 1.0f; x += 1.0f / 512.0f) {
        EXPECT_EQ(evaluateEightSegments(curve.segments, curve.breakpoints, x), treeSegment(curve, x) / 8.0)
            << x;
    }
}

TEST(CubicSplineDistortionMinMax, ConstructionLogsTheRestVoltage) {
    LogRecorder log;
    // s(0) = 0.5 between -3 and 5 volts: 4 + 0.5 * 4 - 3.
    tables::ValveCurve curve = staircase();
    for (auto& segment : curve.segments)
        segment[3] = 0.5f;
    const CubicSplineDistortionMinMax stage(4, 1.0f, -3.0f, 5.0f, curve.segments, curve.breakpoints);
    EXPECT_EQ(stage.zeroInputOutput(), 3.0f);
    EXPECT_TRUE(log.has("CubicSplineDistortionMinMax: ziOutput is 3.000000"));
}

TEST(CubicSplineDistortionMinMax, InPlaceAndBetweenBuffersGiveTheSame) {
    for (int length = 1; length <= 20; ++length) {
        auto stage = make(ampTransfers()[0], length);
        Signal in = noise(static_cast<std::size_t>(length), 12.0f);
        Signal out(in.size());
        stage.process(in.data(), out.data());
        stage.process(in.data());
        EXPECT_EQ(in, out);
    }
}

}  // namespace
