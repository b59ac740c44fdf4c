#include <climits>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PanelUnit.h"
#include "core/ui/HwControlStdDisplayDiscrete.h"
#include "core/ui/HwControlStdDisplayList.h"
#include "core/ui/HwControlStdDisplayListBool.h"
#include "support/LogRecorder.h"

namespace {

using testing::ElementsAre;

// A control of a class on the parameter of its type, tied for its life.
template <typename Class>
class Tied {
public:
    Tied(const std::string& type, const std::string& id, const std::string& extra)
        : archive_(item(type, id, extra)), control(archive_), parameter_(*unit.getParameter(id)) {
        control.attach(parameter_);
    }
    ~Tied() { control.detach(parameter_); }

private:
    DspArchive archive_;

public:
    PanelUnit unit;
    Class control;

private:
    IParameter& parameter_;
};

struct List : Tied<HwControlStdDisplayList> {
    explicit List(const std::string& extra = R"(,"listItems":["a","b","c","d"])")
        : Tied("list", "voice", extra) {}
};
struct Switch : Tied<HwControlStdDisplayListBool> {
    explicit Switch(const std::string& extra = "") : Tied("listBool", "bright", extra) {}
};
struct Stepper : Tied<HwControlStdDisplayDiscrete> {
    explicit Stepper(const std::string& extra = R"(,"min":-2400,"max":2400,"inc":100)")
        : Tied("discrete", "cents", extra) {}
};

TEST(List, APositionChoosesTheNearestItem) {
    List list;
    const std::pair<float, const char*> expected[] = {{0.0f, "a"},  {0.16f, "a"}, {0.17f, "b"},
                                                      {0.49f, "b"}, {0.51f, "c"}, {0.84f, "d"},
                                                      {1.0f, "d"},  {9.0f, "d"},  {-1.0f, "a"}};
    for (const auto& [position, value] : expected) {
        list.control.setFromPosition(position);
        EXPECT_EQ(list.unit.voice.value, value) << position;
    }
    list.control.setFromPosition(std::nanf(""));
    EXPECT_EQ(list.unit.voice.value, "a");
}

TEST(List, LogsWhatItReceives) {
    List list;
    LogRecorder log;
    list.control.setFromPosition(1.0f);
    list.control.setFromString("b");
    list.control.setFromEncoder(1);
    list.control.setFromBool(false);
    const std::string tag = "HwControlStdDisplayList: ";
    EXPECT_THAT(
        log.startingWith(tag),
        ElementsAre(tag + "Received position control: 1.000000", tag + "List item updated: d",
                    tag + "Current item: d", tag + "Received list item control: b",
                    tag + "List item updated: b", tag + "Current index: 1",
                    tag + "Received incremental encoder control: 1 ticks", tag + "List item updated: c",
                    tag + "List item updated: a", tag + "Received bool control, current item: a"));
}

TEST(List, AStringMustBeAnItem) {
    List list;
    list.control.setFromString("c");
    EXPECT_EQ(list.unit.voice.value, "c");
    EXPECT_EQ(list.control.getIndex(), 2);
    const int before = list.unit.voice.numSets;
    list.control.setFromString("z");
    EXPECT_EQ(list.unit.voice.numSets, before);
    EXPECT_EQ(list.control.getIndex(), 2);
}

TEST(List, AnEncoderWalksAndIsHeldAtBothEnds) {
    List list;
    list.unit.voice.parameter.set("b");
    for (const auto& [ticks, value] :
         {std::pair{1, "c"}, {5, "d"}, {-1, "c"}, {INT_MIN, "a"}, {INT_MAX, "d"}}) {
        list.control.setFromEncoder(ticks);
        EXPECT_EQ(list.unit.voice.value, value);
    }
}

TEST(List, ABoolSendsTheFirstOrTheLastItem) {
    List list;
    list.control.setFromBool(true);
    EXPECT_EQ(list.unit.voice.value, "d");
    list.control.setFromBool(false);
    EXPECT_EQ(list.unit.voice.value, "a");
}

TEST(List, FollowsTheParameterAndShowsTheRemap) {
    List list(
        R"(,"listItems":["a","b","c"],"remap":{"listItems":["Alpha","Beta","Gamma"]},"remapMinimized":{"listItems":["A","B","C"]})");
    list.unit.voice.parameter.set("c");
    EXPECT_EQ(list.control.getPosition(), 1.0f);
    EXPECT_EQ(list.control.getDisplayText(), "Gamma");
    EXPECT_EQ(list.control.getDisplayTextMinimized(), "C");
}

TEST(List, AValueThatIsNotInTheListLeavesTheIndexAndShowsEmpty) {
    List list;
    list.unit.voice.parameter.set("c");
    list.unit.voice.parameter.set("z");
    EXPECT_EQ(list.control.getIndex(), 2);
    EXPECT_EQ(list.control.getDisplayText(), "empty");
    list.control.setFromEncoder(1);
    EXPECT_EQ(list.unit.voice.value, "d");
    EXPECT_EQ(list.control.getDisplayText(), "d");
}

TEST(List, WithoutItemsItSendsNothing) {
    for (const char* extra : {"", R"(,"listItems":[])"}) {
        LogRecorder log;
        List list(extra);
        EXPECT_TRUE(log.has("Warn missing listItems object"));
        list.control.setFromPosition(0.5f);
        list.control.setFromBool(true);
        list.control.setFromEncoder(3);
        list.control.setFromString("a");
        EXPECT_EQ(list.unit.voice.numSets, 0);
        EXPECT_EQ(list.control.getPosition(), 0.0f);
        EXPECT_EQ(list.control.getDisplayText(), "empty");
    }
}

TEST(List, ASingleItemStandsAtPositionZero) {
    List list(R"(,"listItems":["only"])");
    list.control.setFromPosition(1.0f);
    EXPECT_EQ(list.unit.voice.value, "only");
    EXPECT_EQ(list.control.getPosition(), 0.0f);
}

TEST(List, ARemapWithoutItemsIsALineAndTheItemsAreShown) {
    LogRecorder log;
    List list(R"(,"listItems":["a","b"],"remap":{},"remapMinimized":{})");
    EXPECT_THAT(log.startingWith("Warn"), ElementsAre("Warn remap found without listItems",
                                                      "Warn remapMinimized found without listItems"));
    list.control.setFromPosition(1.0f);
    EXPECT_EQ(list.control.getDisplayText(), "b");
    EXPECT_EQ(list.control.getDisplayTextMinimized(), "b");
}

TEST(List, ARemapThatIsTooShortShowsEmpty) {
    List list(R"(,"listItems":["a","b"],"remap":{"listItems":["Alpha"]})");
    list.control.setFromPosition(1.0f);
    EXPECT_EQ(list.control.getDisplayText(), "empty");
}

TEST(ListBool, TakesEveryPanelInput) {
    Switch flag;
    flag.control.setFromBool(true);
    EXPECT_TRUE(flag.unit.bright.value);
    flag.control.setFromPosition(0.49f);
    EXPECT_FALSE(flag.unit.bright.value);
    flag.control.setFromPosition(0.5f);
    EXPECT_TRUE(flag.unit.bright.value);
    flag.control.setFromEncoder(-1);
    EXPECT_FALSE(flag.unit.bright.value);
    flag.control.setFromEncoder(4);
    EXPECT_TRUE(flag.unit.bright.value);
    flag.control.setFromString("false");
    EXPECT_FALSE(flag.unit.bright.value);
    flag.control.setFromString("true");
    EXPECT_TRUE(flag.unit.bright.value);
    const int before = flag.unit.bright.numSets;
    flag.control.setFromString("maybe");
    EXPECT_EQ(flag.unit.bright.numSets, before);
}

TEST(ListBool, ItsItemsAreFalseAndTrueUnlessNamed) {
    Switch plain;
    EXPECT_EQ(plain.control.getDisplayText(), "false");
    plain.unit.bright.parameter.set(true);
    EXPECT_EQ(plain.control.getDisplayText(), "true");
    EXPECT_EQ(plain.control.getPosition(), 1.0f);

    Switch named(
        R"(,"listItems":["dark","bright"],"remap":{"listItems":["Dark","Bright"]},"remapMinimized":{"listItems":["D","B"]})");
    named.control.setFromString("bright");
    EXPECT_TRUE(named.unit.bright.value);
    EXPECT_EQ(named.control.getDisplayText(), "Bright");
    EXPECT_EQ(named.control.getDisplayTextMinimized(), "B");
    named.control.setFromString("false");
    EXPECT_FALSE(named.unit.bright.value);
}

TEST(ListBool, ARemapWithoutItemsIsALine) {
    LogRecorder log;
    Switch flag(R"(,"remap":{},"remapMinimized":{})");
    EXPECT_THAT(log.startingWith("Warn"), ElementsAre("Warn remap object missing listItems object",
                                                      "Warn remapMinimized object missing listItems object"));
}

TEST(ListBool, AListOfAnotherLengthIsStillASwitch) {
    for (const char* items : {R"(["only"])", R"(["a","b","c"])"}) {
        Switch flag(R"(,"listItems":)" + std::string(items));
        flag.control.setFromPosition(1.0f);
        EXPECT_TRUE(flag.unit.bright.value);
        EXPECT_EQ(flag.control.getPosition(), 1.0f);
        flag.control.setFromEncoder(-1);
        EXPECT_FALSE(flag.unit.bright.value);
    }
}

TEST(Discrete, StepsByItsIncrement) {
    Stepper stepper;
    stepper.control.setFromEncoder(3);
    EXPECT_EQ(stepper.unit.cents.value, 300);
    stepper.control.setFromEncoder(-5);
    EXPECT_EQ(stepper.unit.cents.value, -200);
    EXPECT_EQ(stepper.control.getDisplayText(), "-200");
}

TEST(Discrete, APositionChoosesTheNearestStepFromMin) {
    Stepper stepper;
    stepper.control.setFromPosition(0.5f);
    EXPECT_EQ(stepper.unit.cents.value, 0);
    stepper.control.setFromPosition(0.5f + 0.9f / 48.0f);
    EXPECT_EQ(stepper.unit.cents.value, 100);
    EXPECT_NEAR(stepper.control.getPosition(), 25.0f / 48.0f, 1e-6f);
    stepper.control.setFromPosition(1.0f);
    EXPECT_EQ(stepper.unit.cents.value, 2400);
}

TEST(Discrete, ValuesBeyondTheRangeAreRefused) {
    Stepper stepper;
    LogRecorder log;
    stepper.control.setFromString("2400");
    stepper.control.setFromEncoder(1);
    stepper.control.setFromString("-2401");
    stepper.control.setFromEncoder(INT_MIN);
    EXPECT_EQ(stepper.unit.cents.value, 2400);
    EXPECT_EQ(log.count("Warn range error"), 3);
    stepper.control.setFromString("many");
    EXPECT_TRUE(log.has("Warn Invalid value sent to the set function, many"));
    stepper.unit.cents.parameter.set(9999);
    EXPECT_EQ(log.count("Warn range error"), 4);
    EXPECT_EQ(stepper.control.getPosition(), 1.0f);
}

TEST(Discrete, ABoolSendsAnEndOfTheRange) {
    Stepper stepper;
    stepper.control.setFromBool(true);
    EXPECT_EQ(stepper.unit.cents.value, 2400);
    stepper.control.setFromBool(false);
    EXPECT_EQ(stepper.unit.cents.value, -2400);
}

TEST(Discrete, DegenerateDefinitionsStandStill) {
    Stepper point(R"(,"min":5,"max":5,"inc":0)");
    point.control.setFromPosition(0.7f);
    EXPECT_EQ(point.unit.cents.value, 5);
    EXPECT_EQ(point.control.getPosition(), 0.0f);
    Stepper wide(R"(,"min":-2147483648,"max":2147483647,"inc":-3)");
    wide.control.setFromPosition(1.0f);
    EXPECT_EQ(wide.unit.cents.value, INT_MAX);
    Stepper inverted(R"(,"min":5,"max":1)");
    inverted.control.setFromPosition(0.5f);
    EXPECT_EQ(inverted.unit.cents.numSets, 0);
}

}  // namespace
