#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "core/Parameter/Observer.h"
#include "core/System/DspArchive.h"
#include "core/units/control/TempoUnit.h"
#include "support/LogRecorder.h"

namespace {

// A unit that keeps what its core would be told.
class Beater final : public TempoUnit {
public:
    struct Order {
        float hz;
        bool isInit;
    };

    Beater() : TempoUnit("DUBS_Beater", 32, 44100.0f, "DUBS_Beater") {
        addRateControl("rate", "Rate", 5.0f, [this](float hz, bool isInit) {
            orders.push_back({hz, isInit});
        });
        orders.clear();
    }
    using TempoUnit::process;
    void process(float*, float*, float*, float*) override {}

    Order last() const { return orders.back(); }
    template <typename T>
    Parameter<T>& parameter(const char* name) {
        return dynamic_cast<Parameter<T>&>(*getParameter(name));
    }

    std::vector<Order> orders;
};

TEST(TempoUnit, PassesItsRateOn) {
    Beater unit;
    unit.parameter<float>("rate").set(4.0f);
    EXPECT_EQ(unit.last().hz, 4.0f);
    EXPECT_FALSE(unit.last().isInit);
    unit.parameter<float>("rate").init(3.2f);
    EXPECT_FLOAT_EQ(unit.last().hz, 3.2f);
    EXPECT_TRUE(unit.last().isInit);
}

TEST(TempoUnit, BeatsOnceATap) {
    Beater unit;
    unit.parameter<float>("tapTime").set(0.25f);
    EXPECT_EQ(unit.last().hz, 4.0f);
    EXPECT_FALSE(unit.last().isInit);
    EXPECT_EQ(unit.parameter<float>("tapTime").get(), 0.25f);
    EXPECT_EQ(unit.parameter<float>("rate").get(), 4.0f);
    unit.parameter<float>("tapTime").init(0.5f);
    EXPECT_EQ(unit.last().hz, 2.0f);
    EXPECT_TRUE(unit.last().isInit);
}

TEST(TempoUnit, TellsTheObserversOfTheRateOfATap) {
    Beater unit;
    class Watch final : public Observer<float> {
    public:
        void update(const float& value) override { last = value; }
        float last = 0.0f;
    } watch;
    unit.parameter<float>("rate").addObserver(&watch);
    EXPECT_EQ(watch.last, 5.0f);
    unit.parameter<float>("tapTime").set(0.25f);
    EXPECT_EQ(watch.last, 4.0f);
    unit.parameter<float>("rate").removeObserver(&watch);
}

TEST(TempoUnit, LeavesTheRateAloneForATapOfZeroOrLessWithAnError) {
    for (const float seconds : {0.0f, -1.0f, std::nanf("")}) {
        Beater unit;
        const LogRecorder log;
        unit.parameter<float>("tapTime").set(seconds);
        unit.parameter<float>("tapTime").init(seconds);
        EXPECT_EQ(log.startingWith("Error").size(), 2u);
        EXPECT_TRUE(unit.orders.empty());
        EXPECT_EQ(unit.parameter<float>("rate").get(), 5.0f);
        EXPECT_FLOAT_EQ(unit.parameter<float>("tapTime").get(), 0.2f);
    }
}

TEST(TempoUnit, FollowsTempoAndNote) {
    Beater unit;
    unit.parameter<float>("tapTimeBPM").set(120.0f);
    EXPECT_EQ(unit.last().hz, 5.0f) << "the division is off";
    unit.parameter<std::string>("noteDivision").set("quarter");
    EXPECT_FLOAT_EQ(unit.last().hz, 2.0f);
    unit.parameter<std::string>("noteDivision").init("eighthNoteTriplet");
    EXPECT_FLOAT_EQ(unit.last().hz, 6.0f);
    EXPECT_TRUE(unit.last().isInit);
    unit.parameter<float>("tapTimeBPM").init(60.0f);
    EXPECT_FLOAT_EQ(unit.last().hz, 3.0f);
    EXPECT_TRUE(unit.last().isInit);
    unit.parameter<float>("rate").set(9.0f);
    EXPECT_FLOAT_EQ(unit.last().hz, 3.0f) << "the note holds";
    EXPECT_EQ(unit.parameter<float>("rate").get(), 9.0f);
    unit.parameter<std::string>("noteDivision").set("off");
    EXPECT_FLOAT_EQ(unit.last().hz, 9.0f);
}

TEST(TempoUnit, WithATempoOfZeroOrLessBehavesAsOff) {
    for (const float bpm : {0.0f, -60.0f}) {
        Beater unit;
        unit.parameter<std::string>("noteDivision").set("quarter");
        unit.parameter<float>("tapTimeBPM").set(120.0f);
        EXPECT_FLOAT_EQ(unit.last().hz, 2.0f);
        unit.parameter<float>("tapTimeBPM").set(bpm);
        EXPECT_EQ(unit.last().hz, 5.0f);
        EXPECT_EQ(unit.parameter<float>("tapTimeBPM").get(), 0.0f);
    }
}

TEST(TempoUnit, RunsARateOfZeroAtAThousandthOfAHertz) {
    Beater unit;
    unit.parameter<float>("rate").set(0.0f);
    EXPECT_FLOAT_EQ(unit.last().hz, 0.001f);
    EXPECT_EQ(unit.parameter<float>("rate").get(), 0.0f);
}

TEST(TempoUnit, LogsEveryControl) {
    Beater unit;
    const LogRecorder log;
    unit.parameter<float>("tapTime").set(0.25f);
    unit.parameter<float>("tapTime").init(0.5f);
    unit.parameter<float>("tapTimeBPM").set(97.6f);
    unit.parameter<float>("tapTimeBPM").init(120.0f);
    unit.parameter<float>("rate").set(2.0f);
    unit.parameter<float>("rate").init(3.0f);
    unit.parameter<std::string>("noteDivision").set("half");
    unit.parameter<std::string>("noteDivision").init("whole");
    EXPECT_EQ(log.startingWith("DUBS_Beater: "),
              (std::vector<std::string>{
                  "DUBS_Beater: Tap Time set, 0.250000", "DUBS_Beater: Tap Time init, 0.500000",
                  "DUBS_Beater: Tap Time BPM set, 97", "DUBS_Beater: Tap Time BPM init, 120",
                  "DUBS_Beater: Rate set, 2.000000", "DUBS_Beater: Rate init, 3.000000",
                  "DUBS_Beater: Note Division set, half", "DUBS_Beater: Note Division init, whole"}));
}

TEST(TempoUnit, StoresRateAndDivisionInAPreset) {
    Beater unit;
    DspArchive loaded(R"({"rate": 2.5, "noteDivision": "eighth"})");
    unit.initDerived(loaded);
    EXPECT_EQ(unit.parameter<float>("rate").get(), 2.5f);
    EXPECT_EQ(unit.parameter<std::string>("noteDivision").get(), "eighth");
    EXPECT_TRUE(std::all_of(unit.orders.begin(), unit.orders.end(), [](const auto& o) { return o.isInit; }));
    DspArchive stored("{}");
    unit.getArchiveDerived(stored);
    float rate = 0.0f;
    std::string division;
    stored.get("rate", rate);
    stored.get("noteDivision", division);
    EXPECT_EQ(rate, 2.5f);
    EXPECT_EQ(division, "eighth");
}

}  // namespace
