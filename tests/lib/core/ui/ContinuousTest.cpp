#include <climits>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

#include "PanelUnit.h"
#include "core/ui/HwControlStdDisplayContinuous.h"
#include "support/LogRecorder.h"
#include "utility/Exception.h"

namespace {

using testing::ElementsAre;

// A knob on a parameter, tied for its life.
class Knob {
public:
    explicit Knob(const std::string& extra) : archive_(continuous(extra)), control(archive_) {
        control.attach(unit.level.parameter);
    }
    ~Knob() { control.detach(unit.level.parameter); }
    float value() const { return unit.level.value; }

private:
    DspArchive archive_;

public:
    PanelUnit unit;
    HwControlStdDisplayContinuous control;
};

TEST(Continuous, APositionGoesThroughTheTaperIntoTheRange) {
    Knob t10(R"(,"min":0,"max":1,"taper":"t10")");
    t10.control.setFromPosition(0.5f);
    EXPECT_NEAR(t10.value(), 0.1f, 1e-6f);
    Knob linear(R"(,"min":-27,"max":0)");
    linear.control.setFromPosition(1.0f / 3.0f);
    EXPECT_NEAR(linear.value(), -18.0f, 1e-5f);
    Knob falling(R"(,"min":10,"max":2)");
    falling.control.setFromPosition(0.25f);
    EXPECT_NEAR(falling.value(), 8.0f, 1e-5f);
    falling.unit.level.parameter.set(4.0f);
    EXPECT_NEAR(falling.control.getPosition(), 0.75f, 1e-6f);
}

TEST(Continuous, PositionsBeyondTheTravelAreHeldAtItsEnds) {
    Knob knob(R"(,"min":-1,"max":1,"taper":"t20s")");
    knob.control.setFromPosition(7.0f);
    EXPECT_EQ(knob.value(), 1.0f);
    knob.control.setFromPosition(-std::numeric_limits<float>::infinity());
    EXPECT_EQ(knob.value(), -1.0f);
    knob.control.setFromPosition(1.0f);
    knob.control.setFromPosition(std::nanf(""));
    EXPECT_EQ(knob.value(), -1.0f);
}

TEST(Continuous, FollowsTheParameterWhoeverSetsIt) {
    Knob knob(R"(,"min":0,"max":10,"taper":"t10","numTicks":101)");
    LogRecorder log;
    knob.unit.level.parameter.set(1.0f);
    // t10 gives a tenth of the range at half the travel.
    EXPECT_NEAR(knob.control.getPosition(), 0.5f, 1e-5f);
    EXPECT_EQ(knob.control.getTick(), 50);
    EXPECT_EQ(knob.control.getValue(), 1.0f);
    EXPECT_TRUE(
        log.has("HwControlStdDisplayContinuous: update called, value = 1.000000, currentPosition = 0.500000, "
                "currentTick = 50"));
    EXPECT_EQ(knob.unit.level.numSets, 1) << "an update is no user action";
}

TEST(Continuous, TakesTheParametersValueWhenItIsAttached) {
    PanelUnit unit;
    unit.level.value = 0.25f;
    DspArchive archive(continuous());
    HwControlStdDisplayContinuous control(archive);
    control.attach(unit.level.parameter);
    EXPECT_EQ(control.getPosition(), 0.25f);
    EXPECT_EQ(control.getTick(), 25);
    control.detach(unit.level.parameter);
}

TEST(Continuous, ValuesBeyondTheRangeStandAtItsEnds) {
    Knob knob(R"(,"min":1,"max":2,"taper":"t10","numTicks":11)");
    knob.unit.level.parameter.set(5.0f);
    EXPECT_EQ(knob.control.getPosition(), 1.0f);
    EXPECT_EQ(knob.control.getTick(), 10);
    knob.unit.level.parameter.set(-5.0f);
    EXPECT_EQ(knob.control.getPosition(), 0.0f);
    EXPECT_EQ(knob.control.getTick(), 0);
}

// Every taper that a definition can name.
std::vector<std::string> allTapers() {
    std::vector<std::string> names{"t50"};
    for (int n = 5; n <= 45; n += 5) {
        for (const char* suffix : {"", "r", "i", "ri", "s", "si", "rs", "rsi"})
            names.push_back(tvk::formatText("t%d%s", n, suffix));
    }
    return names;
}

TEST(Continuous, AnEncodersTickIsTheTickAfterTheUpdateOnEveryTaper) {
    for (const std::string& taper : allTapers()) {
        for (const char* range : {R"("min":0,"max":1)", R"("min":0,"max":10)", R"("min":1,"max":-1)"}) {
            for (const int numTicks : {49, 91, 101}) {
                Knob knob(
                    tvk::formatText(R"(,%s,"numTicks":%d,"taper":"%s")", range, numTicks, taper.c_str()));
                // Off the end first: there every law is at an end of the range.
                knob.control.setFromPosition(0.0f);
                for (int tick = 1; tick < numTicks; ++tick) {
                    knob.control.setFromEncoder(1);
                    ASSERT_EQ(knob.control.getTick(), tick) << taper << " " << range;
                }
            }
        }
    }
}

TEST(Continuous, AnEncoderMovesByTicksAndIsHeldAtBothEnds) {
    Knob knob(R"(,"min":0,"max":1,"numTicks":101)");
    LogRecorder log;
    knob.control.setFromEncoder(30);
    EXPECT_NEAR(knob.value(), 0.30f, 1e-6f);
    EXPECT_TRUE(
        log.has("HwControlStdDisplayContinuous: ticks = 30, currentTick = 30, tmpTick*tickScale = 0.300000"));
    knob.control.setFromEncoder(-10);
    EXPECT_NEAR(knob.value(), 0.20f, 1e-6f);
    knob.control.setFromEncoder(INT_MAX);
    EXPECT_EQ(knob.value(), 1.0f);
    knob.control.setFromEncoder(INT_MIN);
    EXPECT_EQ(knob.value(), 0.0f);
}

TEST(Continuous, ABoolSendsAnEndOfTheRange) {
    Knob knob(R"(,"min":-3,"max":4)");
    knob.control.setFromBool(true);
    EXPECT_EQ(knob.value(), 4.0f);
    knob.control.setFromBool(false);
    EXPECT_EQ(knob.value(), -3.0f);
}

TEST(Continuous, AStringIsAWireValueWithinTheRange) {
    Knob knob(R"(,"min":-3,"max":4)");
    LogRecorder log;
    knob.control.setFromString("2.5");
    EXPECT_EQ(knob.value(), 2.5f);
    knob.control.setFromString("loud");
    knob.control.setFromString("");
    knob.control.setFromString("1e99");
    knob.control.setFromString("4.5");
    knob.control.setFromString("nan");
    EXPECT_EQ(knob.value(), 2.5f);
    EXPECT_THAT(log.startingWith("Warn"), ElementsAre("Warn Invalid value sent to the set function, loud",
                                                      "Warn Invalid value sent to the set function, ",
                                                      "Warn Invalid value sent to the set function, 1e99",
                                                      "Warn calculated wireValue is out of bounds, 4.500000",
                                                      "Warn calculated wireValue is out of bounds, nan"));
}

TEST(Continuous, TheDisplayShowsThePositionThroughTheRemap) {
    Knob knob(
        R"(,"min":-27,"max":0,"units":"dB","taper":"t50","remap":{"min":1,"max":10,"taper":"t50","format":"%0.2f","units":"x"},)"
        R"("remapMinimized":{"min":0,"max":100,"format":"%0.0f%%"})");
    knob.unit.level.parameter.set(-13.5f);
    EXPECT_EQ(knob.control.getDisplayText(), "5.50");
    EXPECT_EQ(knob.control.getDisplayTextMinimized(), "50%");
    EXPECT_EQ(knob.control.getUnits(), "x");
}

TEST(Continuous, WithoutARemapTheDisplayShowsTheValue) {
    Knob knob(R"(,"min":-27,"max":0,"units":"dB","taper":"t20","format":"%0.3f")");
    knob.unit.level.parameter.set(-12.125f);
    EXPECT_EQ(knob.control.getDisplayText(), "-12.125");
    EXPECT_EQ(knob.control.getDisplayTextMinimized(), "-12.125");
    EXPECT_EQ(knob.control.getUnits(), "dB");
}

TEST(Continuous, AFormatThatIsNoNumbersFormatIsReplaced) {
    for (const char* format : {"%s", "%d", "%n", "%f%f", "plain", "%", "%*f", "%123f", "%0.1"}) {
        Knob knob(R"(,"min":0,"max":1,"format":")" + std::string(format) + "\"");
        knob.unit.level.parameter.set(0.25f);
        EXPECT_EQ(knob.control.getDisplayText(), "0.2") << format;
    }
}

TEST(Continuous, TextAroundTheNumberIsKept) {
    Knob knob(R"(,"min":0,"max":1,"format":"%% <%+06.2f> %%")");
    knob.unit.level.parameter.set(0.25f);
    EXPECT_EQ(knob.control.getDisplayText(), "% <+00.25> %");
}

TEST(Continuous, LogsItsDefinition) {
    LogRecorder log;
    Knob knob(
        R"(,"min":-27,"max":0,"taper":"t20","numTicks":49,"format":"%0.1f","remap":{"min":1,"max":10,"taper":"t10"})");
    EXPECT_THAT(
        log.startingWith("HCSDC"),
        ElementsAre("HCSDC: format = %0.1f", "HCSDC: max = 0.000000", "HCSDC: numTicks = 49",
                    "HCSDC: remapFormat = %0.1f", "HCSDC: remapMax = 10.000000", "HCSDC: remapMin = 1.000000",
                    "HCSDC: remapMinimizedFormat = %0.1f", "HCSDC: remapMinimizedMax = 10.000000",
                    "HCSDC: remapMinimizedMin = 1.000000", "HCSDC: remapMinimizedTaper = t10",
                    "HCSDC: remapTaper = t10", "HCSDC: taper = t20"));
}

TEST(Continuous, OneTickOrNoneStandsAtPositionZero) {
    for (const char* numTicks : {"1", "0", "-5"}) {
        Knob knob(R"(,"min":2,"max":3,"numTicks":)" + std::string(numTicks));
        knob.unit.level.parameter.set(3.0f);
        EXPECT_EQ(knob.control.getTick(), 0);
        knob.control.setFromEncoder(3);
        EXPECT_EQ(knob.value(), 2.0f);
    }
}

TEST(Continuous, ARangeOfOneValueSendsItAndStandsAtPositionZero) {
    Knob knob(R"(,"min":2,"max":2,"numTicks":11,"taper":"t10")");
    knob.control.setFromPosition(0.7f);
    EXPECT_EQ(knob.value(), 2.0f);
    EXPECT_EQ(knob.control.getPosition(), 0.0f);
    EXPECT_EQ(knob.control.getTick(), 0);
    knob.unit.level.parameter.set(9.0f);
    EXPECT_EQ(knob.control.getPosition(), 0.0f);
    EXPECT_EQ(knob.control.getDisplayText(), "2.0");
}

TEST(Continuous, MissingTextsHaveTheirDefaults) {
    DspArchive archive("{}");
    HwControlStdDisplayContinuous control(archive);
    EXPECT_EQ(control.getDisplayType(), "knob");
    EXPECT_EQ(control.getControlId(), "???");
    EXPECT_EQ(control.getDisplayName(), "???");
    EXPECT_EQ(control.getNameMinimized(), "???");
    EXPECT_EQ(control.getNameMaximized(), "???");
    EXPECT_EQ(control.getUnits(), "");
}

}  // namespace
