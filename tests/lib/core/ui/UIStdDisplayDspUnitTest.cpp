#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

#include "PanelUnit.h"
#include "core/ui/UIStdDisplayDspUnit.h"
#include "support/LogRecorder.h"

namespace {

using testing::ElementsAre;
using testing::IsSupersetOf;

const std::string kAllItems = continuous(R"(,"min":0,"max":10,"numTicks":101,"units":"dB")") + "," +
                              item("list", "voice", R"(,"listItems":["a","b","c"])") + "," +
                              item("listBool", "bright") + "," +
                              item("discrete", "cents", R"(,"min":-2400,"max":2400,"inc":1)");

std::vector<std::string> ids(const UIStdDisplayDspUnit& ui) {
    std::vector<std::string> result;
    for (int i = 0; i < ui.getNumKnobs(); ++i)
        result.push_back(ui.getParameterId(i));
    return result;
}

TEST(UIStdDisplayDspUnit, EveryControlTypeDrivesItsParameter) {
    PanelUnit unit;
    UIStdDisplayDspUnit ui(unit, definition(kAllItems), "QNB");
    EXPECT_EQ(ui.getKnobClass(), "QNB");
    ASSERT_THAT(ids(ui), ElementsAre("level", "voice", "bright", "cents"));
    ui.setKnob(0, 0.5f);
    EXPECT_EQ(unit.level.value, 5.0f);
    EXPECT_EQ(ui.getKnob(0), 0.5f);
    ui.setKnob(1, "c");
    EXPECT_EQ(unit.voice.value, "c");
    ui.setSwitch(2, true);
    EXPECT_TRUE(unit.bright.value);
    ui.incrementKnob(3, -7);
    EXPECT_EQ(unit.cents.value, -7);
    EXPECT_EQ(ui.getParameterValue(0), "5.0");
    EXPECT_EQ(ui.getParameterUnits(0), "dB");
    EXPECT_EQ(ui.getParameterName(1), "max voice");
    EXPECT_EQ(ui.getParameterNameMinimized(1), "min voice");
    EXPECT_EQ(ui.getParameterDisplayType(1), "multi");
}

TEST(UIStdDisplayDspUnit, OrderBmtGivesTheKnobOrder) {
    PanelUnit unit;
    LogRecorder log;
    UIStdDisplayDspUnit ui(unit, definition(kAllItems, R"(,"orderBMT":[1,0])"), "QNB");
    EXPECT_THAT(ids(ui), ElementsAre("voice", "level"));
    EXPECT_THAT(
        log.lines(),
        IsSupersetOf({"UIStdDisplayDspUnit: found orderBMT node",
                      "UIStdDisplayDspUnit: orderBMT controlCount is 2", "UIStdDisplayDspUnit: numKnobs is 2",
                      "UIStdDisplayDspUnit: looking for knob 0", "UIStdDisplayDspUnit: looking for knob 1"}));
}

TEST(UIStdDisplayDspUnit, WithoutOrderBmtTheOrderIsTheDefinitions) {
    PanelUnit unit;
    LogRecorder log;
    UIStdDisplayDspUnit ui(unit, definition(kAllItems), "QNB");
    EXPECT_TRUE(log.has("UIStdDisplayDspUnit: orderBMT node missing"));
    EXPECT_TRUE(log.has("UIStdDisplayDspUnit: numKnobs is 4"));
    EXPECT_TRUE(log.has("HwControlStdDisplayFactory: Using default HwControlStdDisplayFactory init"));
}

TEST(UIStdDisplayDspUnit, BadEntriesOfOrderBmtAreLeftOut) {
    PanelUnit unit;
    LogRecorder log;
    UIStdDisplayDspUnit ui(unit, definition(kAllItems, R"(,"orderBMT":[3,"x",9,-1,0])"), "QNB");
    EXPECT_THAT(ids(ui), ElementsAre("cents", "level"));
    EXPECT_THAT(
        log.startingWith("Error"),
        ElementsAre("Error problem with orderBMT array, index 1",
                    "Error missing requested parameter array object, index 9, check orderBMT contents",
                    "Error missing requested parameter array object, index -1, check orderBMT contents"));
}

TEST(UIStdDisplayDspUnit, BadItemsAreLeftOut) {
    PanelUnit unit;
    LogRecorder log;
    UIStdDisplayDspUnit ui(
        unit,
        definition(item("wheel", "level") + ",{},7," + item("continuous", "gone", R"(,"min":0,"max":1)") +
                   "," + item("list", "level", R"(,"listItems":["a"])") + "," + continuous()),
        "QNB");
    EXPECT_THAT(ids(ui), ElementsAre("level"));
    EXPECT_THAT(
        log.startingWith("Error"),
        ElementsAre("Error type not found in createFunctionList", "Error problem with parameter array object",
                    "Error archive missing controlType node", "Error problem with parameter array object",
                    "Error archive missing controlType node", "Error problem with parameter array object",
                    "Error Unknown parameter gone.", "Error Bad control type"));
}

TEST(UIStdDisplayDspUnit, DegenerateDefinitionsHaveNoKnobs) {
    PanelUnit unit;
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"{}", {"Error info node missing", "Error ui node missing"}},
        {R"({"info":{"displayName":"x","audioGuiObjectNameMinimized":"","audioGuiObjectNameMaximized":"","category":""},"ui":{}})",
         {"Error uiParameters node missing"}},
        {R"({"info":{"displayName":"x","audioGuiObjectNameMinimized":"","audioGuiObjectNameMaximized":"","category":""},"ui":{"uiParameters":[]}})",
         {}},
    };
    for (const auto& [text, errors] : cases) {
        LogRecorder log;
        UIStdDisplayDspUnit ui(unit, text, "QNB");
        EXPECT_EQ(ui.getNumKnobs(), 0);
        EXPECT_FALSE(ui.hasBypass());
        EXPECT_EQ(log.startingWith("Error"), errors) << text;
        ui.setKnob(0, 0.5f);
    }
    EXPECT_THROW(UIStdDisplayDspUnit(unit, "{", "QNB"), std::exception);
}

TEST(UIStdDisplayDspUnit, AnIndexOutOfRangeIsLoggedAndDoesNothing) {
    PanelUnit unit;
    UIStdDisplayDspUnit ui(unit, definition(continuous()), "QNB");
    LogRecorder log;
    for (int index : {99, 1, -1}) {
        ui.setKnob(index, 0.5f);
        ui.setKnob(index, "0.5");
        ui.setSwitch(index, true);
        ui.incrementKnob(index, 1);
        EXPECT_EQ(ui.getKnob(index), 0.0f);
        EXPECT_EQ(ui.getParameterName(index), "");
        EXPECT_EQ(ui.getParameterNameMinimized(index), "");
        EXPECT_EQ(ui.getParameterUnits(index), "");
        EXPECT_EQ(ui.getParameterValue(index), "");
        EXPECT_EQ(ui.getParameterDisplayType(index), "");
        EXPECT_EQ(ui.getParameterId(index), "");
    }
    EXPECT_EQ(unit.level.numSets, 0);
    const std::string tag = "UIStdDisplayDspUnit: ";
    EXPECT_EQ(log.count(tag + "Ignoring invalid setKnob index: 99"), 2);
    EXPECT_EQ(log.count(tag + "Ignoring invalid getParameterName index: 99"), 2);
    for (const char* text :
         {"setKnob(99, 0.500000)", "setKnob(99, 0.5)", "setSwitch(99, 1)",
          "Ignoring invalid incrementKnob index: 99", "Ignoring invalid getKnob index: 99",
          "Ignoring invalid getParameterUnits index: 99", "Ignoring invalid getParameterValue index: 99",
          "Ignoring invalid getParameterDisplayType index: 99", "Ignoring invalid getParameterId index: 99",
          "Ignoring invalid setKnob index: -1"}) {
        EXPECT_TRUE(log.has(tag + text)) << text;
    }
}

TEST(UIStdDisplayDspUnit, KnobsFollowTheParameters) {
    PanelUnit unit;
    unit.level.value = 2.5f;
    UIStdDisplayDspUnit ui(unit, definition(kAllItems), "QNB");
    EXPECT_EQ(ui.getKnob(0), 0.25f);
    unit.level.parameter.set(7.5f);
    EXPECT_EQ(ui.getKnob(0), 0.75f);
    unit.voice.parameter.set("b");
    EXPECT_EQ(ui.getParameterValue(1), "b");
}

TEST(UIStdDisplayDspUnit, DrivesTheUnitsReservedParameters) {
    PanelUnit unit;
    UIStdDisplayDspUnit ui(unit, definition(""), "QNB");
    EXPECT_TRUE(ui.hasBypass());
    EXPECT_FALSE(ui.getBypass());
    ui.setBypass(true);
    EXPECT_TRUE(unit.getBypass());
    EXPECT_TRUE(ui.getBypass());
    ui.setBypassType("Pre");
    EXPECT_EQ(dynamic_cast<Parameter<std::string>&>(*unit.getParameter("bypassType")).get(), "Pre");
    ui.setTapTime(0.3f);
    EXPECT_EQ(unit.getTapTime(), 0.3f);
    ui.setTapTimeBPM(120.0f);
    EXPECT_EQ(unit.tempoSet, 120.0f);
    ui.initTapTimeBPM(90.0f);
    EXPECT_EQ(unit.tempoInit, 90.0f);
    ui.setNoteDivision("1/8");
    EXPECT_EQ(unit.noteDivision.value, "1/8");
}

TEST(UIStdDisplayDspUnit, TellsAClipOnce) {
    PanelUnit unit;
    UIStdDisplayDspUnit ui(unit, definition(""), "QNB");
    float loud[32], quiet[32] = {};
    unit.connectInput(1, quiet, 2);
    for (int block = 0; block < 60; ++block) {
        std::fill(std::begin(loud), std::end(loud), 2.0f);
        unit.connectInput(0, loud, 1);
        unit.process();
    }
    EXPECT_TRUE(ui.getClipState());
    EXPECT_FALSE(ui.getClipState());
}

// A unit with nothing but the base class gives it.
struct BareUnit : DspUnit {
    BareUnit() : DspUnit("DU_Bare", 1, 1, 32) {}
    void reset() override {}
    void process() override {}
    void init(DspArchive&) override {}
    void getArchive(DspArchive&) override {}
};

TEST(UIStdDisplayDspUnit, AUnitWithoutTheReservedParametersWarnsAndAnswersFalse) {
    BareUnit unit;
    LogRecorder log;
    UIStdDisplayDspUnit ui(unit, definition(""), "QNB");
    EXPECT_THAT(
        log.startingWith("Warn"),
        ElementsAre("Warn DU_Bare does not support bypass", "Warn DU_Bare does not support tap",
                    "Warn DU_Bare does not support tap bpm", "Warn DU_Bare does not support init tap bpm",
                    "Warn DU_Bare does not support noteDivision",
                    "Warn clipState not implemented in DU_Bare"));
    ui.setBypass(true);
    ui.setBypassType("Pre");
    ui.setTapTime(1.0f);
    ui.setTapTimeBPM(1.0f);
    ui.initTapTimeBPM(1.0f);
    ui.setNoteDivision("1/4");
    EXPECT_FALSE(ui.getBypass());
    EXPECT_FALSE(ui.getClipState());
}

TEST(UIStdDisplayDspUnit, ItsEndUntiesEveryControl) {
    PanelUnit unit;
    auto ui = std::make_unique<UIStdDisplayDspUnit>(unit, definition(kAllItems), "QNB");
    ui.reset();
    unit.level.parameter.set(1.0f);
    unit.voice.parameter.set("c");
    unit.bright.parameter.set(true);
    unit.cents.parameter.set(3);
    EXPECT_EQ(unit.level.value, 1.0f);
    UIStdDisplayDspUnit again(unit, definition(kAllItems), "QNB");
    EXPECT_EQ(again.getKnob(0), 0.1f);
}

TEST(UIStdDisplayDspUnit, PrintsATable) {
    PanelUnit unit;
    UIStdDisplayDspUnit ui(
        unit,
        definition(continuous(
            R"(,"min":0,"max":10,"units":"dB","format":"%0.2f","remapMinimized":{"min":1,"max":3})")),
        "QNB");
    ui.setKnob(0, 0.5f);
    testing::internal::CaptureStdout();
    ui.printStatus();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "--- User Interface Status ---------------------------------\n"
              "selected dsp module: Panel\n"
              "           category: effect\n"
              "        subCategory: \n"
              "          hasBypass: 1\n"
              "             hasTap: 1\n"
              " number of controls: 1\n"
              "  Show level,     0.500000, 5.00dB, 2.00dB\n");
    EXPECT_EQ(ui.getUnitNameMinimized(), "pnl");
    EXPECT_EQ(ui.getUnitNameMaximized(), "PANEL");
}

TEST(HwControlStdDisplayFactory, ANullFromACreateFunctionIsAnError) {
    HwControlStdDisplayFactory factory;
    factory.add("none", [](DspArchive&) { return nullptr; });
    factory.add("null", nullptr);
    LogRecorder log;
    for (const char* type : {"none", "null"}) {
        DspArchive archive(item(type, "level"));
        EXPECT_EQ(factory.create(archive), nullptr);
    }
    EXPECT_EQ(log.count("Error null function returned"), 2);
}

}  // namespace
