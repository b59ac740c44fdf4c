#include <gtest/gtest.h>
#include <sstream>
#include <string>

#include "panel/Failures.h"
#include "panel/Pins.h"
#include "panel/Script.h"

using namespace tvk::panel;
using namespace std::chrono_literals;

namespace {

Script readText(const std::string& text) {
    std::istringstream stream(text);
    return Script::of(readScriptLines(stream, "evening"));
}

std::string refusalOf(const std::string& text) {
    try {
        readText(text);
    } catch (const Refusal& refusal) {
        return refusal.what();
    }
    return "none";
}

TEST(PanelScriptTest, ReadsMovesAndPassesOverCommentsAndEmptyLines) {
    const Script script = readText("# evening\n\n0.5 PA_4 0.25  # louder\n \t \n1 PF_4 1\r\n");
    ASSERT_EQ(script.moves.size(), 2u);
    EXPECT_EQ(script.moves[0].at, 500ms);
    EXPECT_EQ(script.moves[0].frame, floatFrame("PA_4", 0.25f));
    EXPECT_EQ(script.moves[1].at, 1s);
    EXPECT_EQ(script.moves[1].frame, intFrame("PF_4", 1));
    EXPECT_TRUE(script.passedOver.empty());
}

TEST(PanelScriptTest, SortsByTimeAndKeepsTheOrderOfOneMoment) {
    const Script script = readText("2 PA_0 0.5\n1 PA_1 0.5\n2 PA_2 0.5\n0 PA_3 0.5\n");
    std::string order;
    for (const Script::Move& move : script.moves)
        order += move.frame.name + " ";
    EXPECT_EQ(order, "PA_3 PA_1 PA_0 PA_2 ");
}

TEST(PanelScriptTest, PassesOverWhatOnlyADeskCanPlay) {
    const Script script = readText("0 button 1\n1 hid 00ff\n2 unplug\n3 plug\n4 PA_4 1\n");
    ASSERT_EQ(script.moves.size(), 1u);
    ASSERT_EQ(script.passedOver.size(), 4u);
    EXPECT_EQ(script.passedOver[0], "evening:1: button is no control of the panel; tarvek-desk plays it");
}

TEST(PanelScriptTest, SaysWhereALineIsWrongAndWhy) {
    EXPECT_EQ(refusalOf("0 PA_4 1\n1 PA_9 0.5\n"), "evening:2: there is no pin PA_9; --help lists them");
    EXPECT_EQ(refusalOf("x PA_4 0.5\n"),
              "evening:1: 'x' is no time in seconds, from 0 to a year, such as 1.5");
    for (const char* const time : {"-1", "nan", "inf", "1e9", "1s", ""})
        EXPECT_NE(refusalOf(std::string(time) + " PA_4\n"), "none") << time;
    EXPECT_EQ(refusalOf("1 PA_4\n"), "evening:1: a line is SECONDS PIN VALUE, such as 1.5 PA_4 0.5");
    EXPECT_EQ(refusalOf("1 PA_4 0.5 0.6\n"), "evening:1: a line is SECONDS PIN VALUE, such as 1.5 PA_4 0.5");
    EXPECT_EQ(refusalOf("1 PA_4 1.5\n"), "evening:1: PA_4 takes a number from 0 to 1, not 1.5");
    EXPECT_EQ(refusalOf("1 PA_4 nan\n"), "evening:1: PA_4 takes a number, not 'nan'");
    EXPECT_EQ(refusalOf("1 PF_4 0.5\n"), "evening:1: PF_4 takes a whole number, not '0.5'");
    EXPECT_EQ(refusalOf("1 PF_4 2147483648\n"), "evening:1: PF_4 takes a whole number, not '2147483648'");
    EXPECT_EQ(refusalOf("1 PA\x1B_4 1\n"), "evening:1: there is no pin PA\\x1B_4; --help lists them");
}

TEST(PanelPinsTest, AreTheSeventeenOfThePanel) {
    std::string floats;
    std::string integers;
    for (const Pin& pin : pins())
        (pin.type == kFloat ? floats : integers) += std::string(pin.name) + " ";
    EXPECT_EQ(floats, "PA_0 PA_1 PA_2 PA_3 PA_4 PA_5 PA_6 PA_7 PB_0 PB_1 PC_0 PC_1 ");
    EXPECT_EQ(integers, "PB2_AND_PB10 PC_10 PF0_AND_PF1 PF_4 PF_5 ");
}

TEST(PanelPinsTest, AFaultOfTypeOrRangeIsNamed) {
    const Pin& volume = *findPin("PA_4");
    EXPECT_EQ(faultOfPin(volume, floatFrame("PA_4", 1.0f)), "");
    EXPECT_EQ(faultOfPin(volume, floatFrame("PA_4", 1.5f)), "is 1.5; it goes from 0 to 1");
    EXPECT_EQ(faultOfPin(volume, intFrame("PA_4", 1)),
              "came as type 6 (int32); it is type 0 (float), and the amplifier drops any other");
    EXPECT_EQ(faultOfPin(*findPin(kCabinetPin), intFrame(kCabinetPin, 3)), "is 3; it goes from 0 to 2");
}

}  // namespace
