#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "desk/Script.h"
#include "support/TemporaryFolder.h"

using namespace std::chrono_literals;
using tvk::desk::Script;
using tvk::desk::ScriptEvent;
using Kind = tvk::desk::ScriptEvent::Kind;

namespace {

class DeskScript : public testing::Test {
protected:
    Script scriptOf(const std::string& text) const {
        const std::filesystem::path file = folder_.path() / "evening.txt";
        std::ofstream(file) << text;
        return Script::load(file.string());
    }

    // All events, in the order in which they come.
    static std::vector<ScriptEvent> playedBy(Script script) {
        std::vector<ScriptEvent> events;
        while (const ScriptEvent* const event = script.take(24h))
            events.push_back(*event);
        return events;
    }

private:
    TemporaryFolder folder_;
};

}  // namespace

TEST_F(DeskScript, EveryDoorOfTheAmplifierHasItsLine) {
    const std::vector<ScriptEvent> events = playedBy(
        scriptOf("1 PA_4 0.25\n2 PC_10 1\n3 button 1\n4 button 0\n5 hid 33ff\n6 unplug\n7 plug  # again\n"));
    ASSERT_EQ(events.size(), 7u);
    EXPECT_EQ(events[0].kind, Kind::Pin);
    EXPECT_EQ(events[0].at, 1s);
    EXPECT_EQ(events[0].frame, tvk::panel::floatFrame("PA_4", 0.25f));
    EXPECT_EQ(events[1].frame, tvk::panel::intFrame("PC_10", 1));
    EXPECT_EQ(events[2].kind, Kind::Button);
    EXPECT_TRUE(events[2].isDown);
    EXPECT_FALSE(events[3].isDown);
    EXPECT_EQ(events[4].kind, Kind::Report);
    EXPECT_EQ(events[5].kind, Kind::Unplug);
    EXPECT_EQ(events[6].kind, Kind::Plug);
    EXPECT_EQ(events[6].at, 7s);
}

TEST_F(DeskScript, AShortReportIsFilledWithZeros) {
    const std::vector<ScriptEvent> events = playedBy(scriptOf("0 hid 3300fE\n"));
    ASSERT_EQ(events.size(), 1u);
    tvk::desk::HidReport expected{};
    expected[0] = 0x33;
    expected[2] = 0xFE;
    EXPECT_EQ(events[0].report, expected);
}

TEST_F(DeskScript, EventsComeByTimeAndThoseOfOneMomentInTheirOrder) {
    Script script = scriptOf("2 PA_0 0\n1 PA_1 0\n2 PA_2 0\n0 PA_3 0\n");
    ScriptEvent added;
    added.kind = Kind::Unplug;
    added.at = 2s;
    script.add(added);
    std::string order;
    for (const ScriptEvent& event : playedBy(script))
        order += (event.frame ? event.frame->name : "unplug") + " ";
    EXPECT_EQ(order, "PA_3 PA_1 PA_0 PA_2 unplug ");
}

TEST_F(DeskScript, NothingComesBeforeItsTimeAndNothingTwice) {
    Script script = scriptOf("0.5 PA_0 0\n0.75 PA_1 0\n");
    EXPECT_EQ(script.take(499999999ns), nullptr);
    ASSERT_NE(script.take(500ms), nullptr);
    EXPECT_EQ(script.take(749ms), nullptr);
    ASSERT_NE(script.take(10s), nullptr);
    EXPECT_EQ(script.take(24h), nullptr);
}

TEST_F(DeskScript, ReportsAskForAHostThatIsThere) {
    EXPECT_TRUE(scriptOf("1 PA_0 0\n2 hid 00\n").hasReports());
    EXPECT_FALSE(scriptOf("1 PA_0 0\n2 unplug\n").hasReports());
}
