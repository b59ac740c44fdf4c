#include <cmath>

#include "HostFixture.h"
#include "utility/Exception.h"

namespace {

using Strings = std::vector<std::string>;

TEST_F(HostTest, AHostWithoutAPresetReadsSilence) {
    expectOutput(0.0f, 0.0f);
    EXPECT_TRUE(host.getNodeIds().empty());
}

TEST_F(HostTest, APresetWithoutNodesPassesItsInputsThrough) {
    load(preset({}, chain({"preset", "preset"})));
    expectOutput(0.25f, 0.5f);
    EXPECT_TRUE(host.getNodeIds().empty());
}

TEST_F(HostTest, UnitsOfAChainWorkInTheOrderOfTheArray) {
    load(preset({node("a", "Offset", 1), node("b", "Offset", 10)}, chain({"preset", "a", "b", "preset"})));
    expectOutput(11.25f, 11.5f);
    EXPECT_EQ(host.getNodeIds(), (Strings{"a", "b"}));
}

TEST_F(HostTest, ANodeThatReadsFromALaterOneHearsThePreviousBlock) {
    load(preset({node("a", "Offset"), node("b", "Offset")}, chain({"preset", "b", "a", "preset"})));
    run(0.1f, 0.2f);
    expectOutput(0.1f, 0.2f, 0.3f, 0.4f);
    expectOutput(0.3f, 0.4f, 0.0f, 0.0f);
}

TEST_F(HostTest, OfTwoConnectionsToOneInputTheLastWins) {
    Strings edges = chain({"preset", "preset"});
    edges.push_back(edge("preset", 1, "preset", 0));
    load(preset({}, edges));
    expectOutput(0.5f, 0.5f);
}

TEST_F(HostTest, ANodeIdThatIsTakenGetsASuffixAndConnectionsGoToTheFirst) {
    load(preset({node("a", "Offset", 1), node("a", "Offset", 10), node("a", "Offset", 100)},
                chain({"preset", "a", "preset"})));
    EXPECT_EQ(host.getNodeIds(), (Strings{"a", "a_1", "a_2"}));
    expectOutput(1.25f, 1.5f);
}

TEST_F(HostTest, ANodeWithTheHostsOwnIdGetsASuffix) {
    load(preset({node("preset", "Offset", 1)}, chain({"preset", "preset_1", "preset"})));
    EXPECT_EQ(host.getNodeIds(), Strings{"preset_1"});
    expectOutput(1.25f, 1.5f);
}

TEST_F(HostTest, AnotherNumberOfInputsWarnsAndLoads) {
    load(preset({node("a", "Offset", 1)}, chain({"preset", "a", "preset"}), 3));
    EXPECT_TRUE(log.has("Warn preset specifies different number of inputs than host node"));
    expectOutput(1.25f, 1.5f);
}

TEST_F(HostTest, BadConnectionsAreLoggedAndDropped) {
    load(preset({node("a", "Offset", 1)},
                {edge("x", 0, "a", 0), edge("a", 0, "x", 0), edge("a", 2, "preset", 0),
                 edge("a", 0, "preset", 2), edge("a", -1, "preset", 0), edge("a", 0, "preset", -1),
                 edge("preset", 0, "a", 0), edge("a", 0, "preset", 0)}));
    EXPECT_EQ(log.count("Error invalid input node in audio connection"), 1);
    EXPECT_EQ(log.count("Error invalid output node in audio connection"), 1);
    EXPECT_EQ(log.count("Error invalid input index in audio connection"), 2);
    EXPECT_EQ(log.count("Error invalid output index in audio connection"), 2);
    EXPECT_EQ(host.getConnections().size(), 2u);
    expectOutput(1.25f, 0.0f);
}

TEST_F(HostTest, APresetWithoutInfoWarnsAndLoads) {
    load(R"({"nodeType":"preset","nodeId":"preset","version":"1.1","numInputs":2,"numOutputs":2,)"
         R"("audioGraph":{"nodes":[],"connections":[)" +
         join(chain({"preset", "preset"})) + "]}}");
    EXPECT_TRUE(log.has("Warn missing info array"));
    expectOutput(0.25f, 0.5f);
}

TEST_F(HostTest, APresetWithoutAGraphIsSilent) {
    load(preset({}, chain({"preset", "preset"})));
    load(R"({"nodeType":"preset","nodeId":"preset","version":"1.1","numInputs":2,"numOutputs":2})");
    expectOutput(0.0f, 0.0f);
}

TEST_F(HostTest, ItemsOfTheNodeArrayThatAreNoObjectsAreSkipped) {
    load(preset({"7", node("a", "Offset", 1), "null", R"("text")"}, chain({"preset", "a", "preset"})));
    EXPECT_EQ(host.getNodeIds(), Strings{"a"});
    expectOutput(1.25f, 1.5f);
}

TEST_F(HostTest, ANodeWithoutParametersIsSkippedWithAWarning) {
    load(preset({R"({"nodeId":"bare","nodeType":"dspUnit","TarvekId":"Offset"})", node("a", "Offset", 1)},
                chain({"preset", "a", "preset"})));
    EXPECT_TRUE(log.has("Warn No \"parameters\" archive for the dspUnit node bare"));
    EXPECT_EQ(host.getNodeIds(), Strings{"a"});
    expectOutput(1.25f, 1.5f);
}

TEST_F(HostTest, EachSpellingOfTheParametersIsRead) {
    for (const char* key : {"dspUnitParameters", "defaultDspUnitParameters", "parameters"}) {
        load(preset({R"({"nodeId":"a","nodeType":"dspUnit","TarvekId":"Offset",")" + std::string(key) +
                     R"(":{"value":2}})"},
                    chain({"preset", "a", "preset"})));
        expectOutput(2.25f, 2.5f);
    }
}

TEST_F(HostTest, AnUnknownTypeWarnsAndGivesTheDefaultUnit) {
    load(preset({node("a", "Nonesuch", 1)}, chain({"preset", "a", "preset"})));
    EXPECT_TRUE(log.has("Warn can't find Nonesuch in database"));
    EXPECT_EQ(host.getDspUnit("a")->getTarvekId(), "Default");
    expectOutput(1.25f, 1.5f);
}

TEST_F(HostTest, ASecondLoadLeavesOneRunListWithItsUnitsAlone) {
    const int before = OffsetUnit::living;
    for (int i = 0; i < 2; ++i)
        load(preset({node("a", "Offset", 1)}, chain({"preset", "a", "preset"})));
    EXPECT_EQ(OffsetUnit::living, before + 1);
    EXPECT_EQ(host.getNodeIds(), Strings{"a"});
    EXPECT_EQ(host.getConnections().size(), 4u);
    expectOutput(1.25f, 1.5f);
}

TEST_F(HostTest, AnUnsupportedNodeTypeThrows) {
    try {
        load(preset({R"({"nodeId":"a","nodeType":"plugin"})"}, {}));
        FAIL() << "no exception";
    } catch (const tvk::Exception& exception) {
        EXPECT_STREQ(exception.what(), "Node type \"plugin\" is not supported");
    }
}

TEST_F(HostTest, AFactoryThatGivesNothingThrows) {
    EXPECT_THROW(load(preset({node("a", "Null")}, {})), tvk::Exception);
}

TEST_F(HostTest, ALoadThatThrowsLeavesAnEmptyMutedHostThatCanLoadAgain) {
    const int before = OffsetUnit::living;
    load(preset({node("a", "Offset", 1)}, chain({"preset", "a", "preset"})));
    EXPECT_THROW(
        load(preset({node("b", "Offset", 2), node("c", "Failing")}, chain({"preset", "b", "preset"}))),
        std::runtime_error);
    EXPECT_EQ(OffsetUnit::living, before);
    EXPECT_TRUE(host.getNodeIds().empty());
    EXPECT_TRUE(host.getConnections().empty());
    openGains();
    expectOutput(0.0f, 0.0f);
    EXPECT_LT(host.getMuteOutputGain(), 1e-6f);
    EXPECT_EQ(host.getUtilization().getUsed(), 0.0f);

    load(preset({node("a", "Offset", 1)}, chain({"preset", "a", "preset"})));
    host.setMuteOutput(false);
    openGains();
    expectOutput(1.25f, 1.5f);
}

TEST_F(HostTest, ANestedPresetIsANodeOfItsOwn) {
    const std::string inner = preset({node("x", "Offset", 5)}, chain({"preset", "x", "preset"}));
    load(preset({inner, node("a", "Offset", 1)}, chain({"preset", "preset_1", "a", "preset"})));
    EXPECT_EQ(host.getNodeIds(), (Strings{"preset_1", "a"}));
    EXPECT_EQ(host.getDspUnit("preset_1")->getNodeType(), "preset");
    openGains();
    expectOutput(6.25f, 6.5f);
}

TEST_F(HostTest, ANestedPresetComesBackFromItsArchive) {
    const std::string inner = preset({node("x", "Offset", 5)}, chain({"preset", "x", "preset"}));
    load(preset({inner, node("a", "Offset", 1)}, chain({"preset", "preset_1", "a", "preset"})));
    const std::string text = archived();
    load(text);
    EXPECT_EQ(archived(), text);
    openGains();
    expectOutput(6.25f, 6.5f);
}

TEST_F(HostTest, AnAbsurdNumberOfChannelsOfANestedPresetIsLimited) {
    std::string inner = preset({}, {}, -5);
    load(preset({inner}, {}));
    EXPECT_EQ(host.getDspUnit("preset_1")->getNumInputs(), 0);
    inner = preset({}, {}, 2000000000);
    load(preset({inner}, {}));
    EXPECT_EQ(host.getDspUnit("preset_1")->getNumInputs(), 64);
}

TEST_F(HostTest, TheArchiveOfALoadedPresetIsThePreset) {
    const std::string text =
        preset({node("a", "Offset", 1.5), node("b", "Offset", 0.25)}, chain({"preset", "a", "b", "preset"}));
    load(text);
    DspArchive expected(text);
    DspArchive got;
    host.getArchive(got);
    // Numbers come back as floats, so both texts go through the loader once more.
    load(got.toString());
    EXPECT_EQ(archived(), got.toString());
    for (const char* key : {"nodeType", "nodeId", "version"}) {
        std::string a, b;
        expected.get(key, a);
        got.get(key, b);
        EXPECT_EQ(a, b);
    }
    expectOutput(2.0f, 2.25f);
}

TEST_F(HostTest, TheInfoOfAPresetIsCarried) {
    std::string text = preset({}, {});
    text.replace(text.find(R"("displayName":"")"), 16, R"("displayName":"Blue")");
    load(text);
    EXPECT_EQ(host.getInfo().displayName, "Blue");
    EXPECT_NE(archived().find(R"("displayName":"Blue")"), std::string::npos);
}

TEST_F(HostTest, GlobalFxBypassReachesUnitsThatComeLater) {
    host.setGlobalFxBypass(true);
    EXPECT_TRUE(log.has("DspUnitHost: setGlobalFxBypass(1)"));
    load(preset({node("e", "Effect")}, {}));
    // The unit logs what it was given.
    EXPECT_GE(log.startingWith("DspUnitBypassStereo: setGlobalFxBypass(1)").size(), 1u);
}

TEST_F(HostTest, TheMuteRampsFollowTheirOnePole) {
    load(preset({}, chain({"preset", "preset"})));
    in[0].assign(kBlock, 1.0f);
    host.setMuteOutput(true);
    host.process();
    const double pole = std::exp(-1.0 / (0.001 * static_cast<double>(kRate)));
    for (int n = 0; n < kBlock; ++n)
        EXPECT_NEAR(host.getOutputAddr(0)[n], std::pow(pole, n + 1), 1e-4) << n;
}

TEST_F(HostTest, TheFirstUnitInUseGivesTheImpedance) {
    load(preset({node("a", "Offset")}, {}));
    EXPECT_FALSE(host.isAnyUnitActive());
    EXPECT_EQ(host.getFirstActiveImpedance(), std::make_pair(1000000.0f, 0.01f));
    load(preset({node("a", "Offset"), node("e", "Effect")}, {}));
    EXPECT_TRUE(host.isAnyUnitActive());
    EXPECT_EQ(host.getFirstActiveImpedance(), std::make_pair(8.0f, 0.5f));
    dynamic_cast<Parameter<bool>&>(*host.getDspUnit("e")->getParameter("bypass")).set(true);
    EXPECT_FALSE(host.isAnyUnitActive());
}

}  // namespace
