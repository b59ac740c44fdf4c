#include <cmath>
#include <gtest/gtest.h>
#include <string>

#include "math/NoteDivisionAndBPM.h"
#include "math/NoteDivisionAndBpmHz.h"
#include "support/LogRecorder.h"

namespace {

TEST(NoteDivisionAndBPM, GivesTheTimeOfANoteAtATempo) {
    NoteDivisionAndBPM note;
    note.setBpm(120.0f);
    note.setDivision("quarter");
    EXPECT_FLOAT_EQ(note.getTimeInSeconds(), 0.5f);
    note.setDivision("dottedEighth");
    EXPECT_FLOAT_EQ(note.getTimeInSeconds(), 0.375f);
}

TEST(NoteDivisionAndBPM, KnowsTheNotesInTheOrderOfTheirList) {
    struct Row {
        const char* name;
        double beats;
    };
    const Row rows[] = {{"off", 0.0},
                        {"whole", 4.0},
                        {"half", 2.0},
                        {"dottedHalf", 3.0},
                        {"halfNoteTriplet", 4.0 / 3.0},
                        {"dottedQuarter", 1.5},
                        {"quarter", 1.0},
                        {"quarterNoteTriplet", 2.0 / 3.0},
                        {"eighth", 0.5},
                        {"dottedEighth", 0.75},
                        {"eighthNoteTriplet", 1.0 / 3.0},
                        {"sixteenthNote", 0.25},
                        {"dottedSixteenthNote", 0.375},
                        {"sixteenthNoteTriplet", 1.0 / 6.0},
                        {"thirtySecondsNote", 0.125},
                        {"dottedThirtySecondsNote", 0.1875},
                        {"thirtySecondsNoteTriplet", 1.0 / 12.0},
                        {"sixtyFourthsNode", 0.0625},
                        {"dottedSixtyFourthsNote", 0.09375},
                        {"sixtyFourthsNoteTriplet", 1.0 / 24.0}};
    ASSERT_EQ(NoteDivisionAndBPM::kDivisions.size(), std::size(rows));
    NoteDivisionAndBPM note;
    note.setBpm(90.0f);
    note.setTime(7.0f);
    for (size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_STREQ(NoteDivisionAndBPM::kDivisions[i].name, rows[i].name);
        note.setDivision(rows[i].name);
        EXPECT_NEAR(note.getTimeInSeconds(), i == 0 ? 7.0 : 60.0 / 90.0 * rows[i].beats, 1e-6)
            << rows[i].name;
    }
}

TEST(NoteDivisionAndBPM, IgnoresTheTempoWhenOff) {
    NoteDivisionAndBPM note;
    note.setTime(0.3f);
    note.setBpm(120.0f);
    EXPECT_EQ(note.getDivision(), "off");
    EXPECT_EQ(note.getTimeInSeconds(), 0.3f);
    note.setBpm(60.0f);
    EXPECT_EQ(note.getTimeInSeconds(), 0.3f);
}

TEST(NoteDivisionAndBPM, WithoutATempoBehavesAsOff) {
    NoteDivisionAndBPM note;
    note.setTime(0.3f);
    note.setDivision("quarter");
    for (const float bpm : {0.0f, -10.0f, std::nanf("")}) {
        note.setBpm(bpm);
        EXPECT_EQ(note.getBpm(), 0.0f);
        EXPECT_EQ(note.getTimeInSeconds(), 0.3f);
    }
    note.setBpm(120.0f);
    EXPECT_FLOAT_EQ(note.getTimeInSeconds(), 0.5f);
}

TEST(NoteDivisionAndBPM, LogsTempoAndTimeUnderItsTag) {
    const LogRecorder log;
    NoteDivisionAndBPM note;
    note.setBpm(120.0f);
    note.setTime(0.25f);
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"NoteDivisionAndBPM: bpm set, 120.000000",
                                                     "NoteDivisionAndBPM: time set, 0.250000"}));
}

TEST(NoteDivisionAndBPM, TakesAnUnknownDivisionForOffWithAnError) {
    const LogRecorder log;
    NoteDivisionAndBPM note;
    note.setTime(0.3f);
    note.setBpm(120.0f);
    note.setDivision("sixtyFourthsNote");
    EXPECT_EQ(log.startingWith("Error").size(), 1u);
    EXPECT_EQ(note.getTimeInSeconds(), 0.3f);
    EXPECT_EQ(note.getDivision(), "sixtyFourthsNote");
}

TEST(NoteDivisionAndBpmHz, KeepsARateAsItsPeriod) {
    NoteDivisionAndBpmHz rate;
    rate.setHz(4.0f);
    EXPECT_EQ(rate.getTime(), 0.25f);
    EXPECT_EQ(rate.getHz(), 4.0f);
    rate.setBpm(90.0f);
    rate.setDivision("eighth");
    EXPECT_FLOAT_EQ(rate.getHz(), 3.0f);
    rate.setDivision("off");
    EXPECT_EQ(rate.getHz(), 4.0f);
}

TEST(NoteDivisionAndBpmHz, TakesARateOfZeroForAThousandthOfAHertz) {
    NoteDivisionAndBpmHz rate;
    rate.setHz(0.0f);
    EXPECT_FLOAT_EQ(rate.getHz(), 0.001f);
}

}  // namespace
