#include <fstream>
#include <stdexcept>

#include "HostFixture.h"
#include "support/TemporaryFolder.h"
#include "utility/Exception.h"

namespace {

using Strings = std::vector<std::string>;

class HostEditTest : public HostTest {
protected:
    HostEditTest() {
        load(preset({node("a", "Offset", 1), node("b", "Offset", 10), node("c", "Offset", 100)},
                    chain({"preset", "a", "b", "c", "preset"})));
    }
    std::string insert(const std::string& location, const std::string& nodeText) {
        DspArchive archive(nodeText);
        return host.insertDspUnit(location, archive);
    }
    std::string replace(const std::string& id, const std::string& nodeText) {
        DspArchive archive(nodeText);
        return host.replaceDspUnit(id, archive);
    }
};

TEST_F(HostEditTest, AnAddedUnitComesLastAndIsUnwired) {
    EXPECT_EQ(add(node("ignored", "Offset", 1000)), "Offset");
    EXPECT_EQ(add(node("ignored", "Offset", 1000)), "Offset_1");
    EXPECT_EQ(host.getNodeIds(), (Strings{"a", "b", "c", "Offset", "Offset_1"}));
    expectOutput(111.25f, 111.5f);
    host.connectAll("Offset_1", "preset");
    expectOutput(1000.0f, 1000.0f);
}

TEST_F(HostEditTest, AnInsertedUnitIsSplicedIntoTheInputsOfItsLocation) {
    EXPECT_EQ(insert("b", node("", "Offset", 1000)), "Offset");
    EXPECT_EQ(host.getNodeIds(), (Strings{"a", "Offset", "b", "c"}));
    expectOutput(1111.25f, 1111.5f);
    EXPECT_EQ(host.getConnections().size(), 10u);
}

TEST_F(HostEditTest, AUnitInsertedAtTheHostsOwnIdComesLast) {
    insert("preset", node("", "Offset", 1000));
    EXPECT_EQ(host.getNodeIds().back(), "Offset");
    expectOutput(1111.25f, 1111.5f);
}

TEST_F(HostEditTest, AnInsertionAtAnUnknownLocationChangesNothing) {
    const std::string before = archived();
    EXPECT_EQ(insert("nowhere", node("", "Offset")), "");
    EXPECT_TRUE(log.has("Error nodeIdInsertLocation doesn't exist"));
    EXPECT_EQ(archived(), before);
}

TEST_F(HostEditTest, ADocumentBringsItsNodeIdAndItsLocation) {
    std::string text = node("mine", "Offset", 1000);
    text.insert(1, R"("location":{"nodeId":"b"},)");
    DspArchive document(text);
    EXPECT_EQ(host.insertDspUnit(document), "mine");
    EXPECT_EQ(host.getNodeIds(), (Strings{"a", "mine", "b", "c"}));
    expectOutput(1111.25f, 1111.5f);
}

TEST_F(HostEditTest, ARemovedUnitTakesItsConnectionsAlong) {
    host.removeDspUnit("b");
    EXPECT_EQ(host.getNodeIds(), (Strings{"a", "c"}));
    EXPECT_EQ(host.getConnections().size(), 4u);
    expectOutput(100.0f, 100.0f);
}

TEST_F(HostEditTest, RemovingTheHostsOwnIdDoesNothing) {
    const std::string before = archived();
    host.removeDspUnit("preset");
    host.removeDspUnitAndBridge("preset");
    EXPECT_EQ(log.count("Error preset can't be removed"), 2);
    EXPECT_EQ(archived(), before);
    expectOutput(111.25f, 111.5f);
}

TEST_F(HostEditTest, RemovingWithBridgingClosesTheChainChannelByChannel) {
    host.disconnect("b", 1, "c", 1);
    host.connect("b", 1, "c", 0);
    host.connect("b", 0, "c", 1);
    host.disconnect("b", 0, "c", 0);
    expectOutput(111.5f, 111.25f);
    host.removeDspUnitAndBridge("b");
    EXPECT_EQ(host.getNodeIds(), (Strings{"a", "c"}));
    expectOutput(101.5f, 101.25f);
}

TEST_F(HostEditTest, AReplacementTakesPlaceAndConnections) {
    const int before = OffsetUnit::living;
    EXPECT_EQ(replace("b", node("", "Offset", 1000)), "Offset");
    EXPECT_EQ(OffsetUnit::living, before);
    EXPECT_EQ(host.getNodeIds(), (Strings{"a", "Offset", "c"}));
    expectOutput(1101.25f, 1101.5f);
}

TEST_F(HostEditTest, ReplacingTheLastUnitKeepsItLast) {
    replace("c", node("", "Offset", 1000));
    EXPECT_EQ(host.getNodeIds(), (Strings{"a", "b", "Offset"}));
    expectOutput(1011.25f, 1011.5f);
}

TEST_F(HostEditTest, AReplacementWithoutAChannelLeavesItUnwired) {
    replace("b", node("", "MonoOffset", 1000));
    expectOutput(1101.25f, 100.0f);
}

TEST_F(HostEditTest, AUnitWithoutMuteOutputIsReplacedWithAWarning) {
    replace("b", node("", "Offset", 1000));
    EXPECT_TRUE(log.has("Warn Unsuccessfully tried to mute b"));
}

TEST_F(HostEditTest, AUnitWithMuteOutputIsSilentWhenItIsReplaced) {
    load(preset({node("e", "Effect")}, chain({"preset", "e", "preset"})));
    openGains();
    expectOutput(0.25f, 0.5f);
    IDspUnit* const effect = host.getDspUnit("e");
    float heardLast = 1.0f;
    {
        // A block for each of the waiting's, of which the last one before the swap counts.
        AudioWhileWaiting watch(kBlock / static_cast<double>(kRate), [&] {
            host.process();
            if (host.getDspUnit("e") == effect) heardLast = effect->getOutputAddr(0)[kBlock - 1];
        });
        replace("e", node("", "Effect"));
    }
    EXPECT_LT(heardLast, 0.01f * 0.25f);
    EXPECT_GT(heardLast, 0.0f);
    EXPECT_FALSE(log.has("Warn Unsuccessfully tried to mute e"));
}

TEST_F(HostEditTest, ReplacingTheHostItselfThrows) {
    try {
        replace("preset", node("", "Offset"));
        FAIL() << "no exception";
    } catch (const tvk::Exception& exception) {
        EXPECT_STREQ(exception.what(), "preset is an invalid replacement location.");
    }
    expectOutput(111.25f, 111.5f);
}

TEST_F(HostEditTest, AReplacementThatCannotBeBuiltLeavesAGraphWithoutTheOldUnit) {
    EXPECT_THROW(replace("b", node("", "Failing")), std::runtime_error);
    EXPECT_EQ(host.getNodeIds(), (Strings{"a", "c"}));
    expectOutput(100.0f, 100.0f);
}

TEST_F(HostEditTest, ANodeWithoutParametersChangesNothing) {
    const std::string before = archived();
    const std::string bare = R"({"nodeId":"bare","nodeType":"dspUnit","TarvekId":"Offset"})";
    EXPECT_EQ(add(bare), "");
    EXPECT_EQ(insert("b", bare), "");
    EXPECT_EQ(replace("b", bare), "");
    EXPECT_EQ(log.count("Warn No \"parameters\" archive for the dspUnit node bare"), 3);
    EXPECT_EQ(archived(), before);
}

TEST_F(HostEditTest, AMovedUnitKeepsIdAndState) {
    dynamic_cast<Parameter<float>&>(*host.getDspUnit("c")->getParameter("value")).set(500.0f);
    host.moveDspUnit("c", "a");
    EXPECT_EQ(host.getNodeIds(), (Strings{"c", "a", "b"}));
    expectOutput(511.25f, 511.5f);
}

TEST_F(HostEditTest, AMoveToAnUnknownLocationRemovesNothing) {
    const std::string before = archived();
    host.moveDspUnit("c", "nowhere");
    EXPECT_TRUE(log.has("Error nodeIdInsertLocation doesn't exist"));
    EXPECT_EQ(archived(), before);
}

TEST_F(HostEditTest, MovingAnUnknownNodeThrows) {
    try {
        host.moveDspUnit("nobody", "a");
        FAIL() << "no exception";
    } catch (const std::out_of_range& exception) {
        EXPECT_STREQ(exception.what(), "nodeIdToMove doesn't exist");
    }
}

TEST_F(HostEditTest, ARenamedNodeKeepsItsConnections) {
    host.rename("b", "x");
    EXPECT_EQ(host.getNodeIds(), (Strings{"a", "x", "c"}));
    expectOutput(111.25f, 111.5f);
    host.removeDspUnitAndBridge("x");
    expectOutput(101.25f, 101.5f);
}

TEST_F(HostEditTest, ARenameToATakenIdThrows) {
    try {
        host.rename("b", "c");
        FAIL() << "no exception";
    } catch (const std::out_of_range& exception) {
        EXPECT_STREQ(exception.what(), "newId is not unique");
    }
}

TEST_F(HostEditTest, ARenamedHostTakesItsTerminalAlong) {
    host.setNodeId("b");
    EXPECT_TRUE(host.hasNode("b_1"));
    expectOutput(111.25f, 111.5f);
    host.disconnect("c", 0, "b", 0);
    expectOutput(0.0f, 111.5f);
}

TEST_F(HostEditTest, ConnectingAnUnknownNodeThrowsAndABadChannelIsAnError) {
    EXPECT_THROW(host.connect("x", 0, "a", 0), tvk::Exception);
    EXPECT_THROW(host.connect("a", 0, "x", 0), tvk::Exception);
    host.connect("a", 2, "b", 0);
    host.connect("a", 0, "b", -1);
    EXPECT_TRUE(log.has("Error invalid input index in audio connection"));
    EXPECT_TRUE(log.has("Error invalid output index in audio connection"));
    expectOutput(111.25f, 111.5f);
}

TEST_F(HostEditTest, EitherConnectionOfAnInputCanGoAndTheLastOneLeavesSilence) {
    host.connect("preset", 1, "preset", 0);
    expectOutput(0.5f, 111.5f);
    host.disconnect("preset", 1, "preset", 0);
    expectOutput(0.5f, 111.5f);
    host.disconnect("c", 0, "preset", 0);
    expectOutput(0.0f, 111.5f);
}

TEST_F(HostEditTest, WithoutATableNoUnitFitsTheBudget) {
    EXPECT_EQ(host.getUtilization().getUsed(), 0.0f);
    EXPECT_EQ(log.count("Error over cpu budget"), 3);
}

TEST_F(HostEditTest, AnInputFallsBackToItsOtherConnectionWhenTheUnitItHearsGoes) {
    const std::string added = add(node("", "Offset", 1000));
    host.connectAll(added, "preset");
    expectOutput(1000.0f, 1000.0f);
    host.removeDspUnit(added);
    expectOutput(111.25f, 111.5f);
}

class BudgetedHostTest : public HostTest {
protected:
    BudgetedHostTest() {
        const TemporaryFolder folder;
        const std::string file = folder.file("costs.json");
        std::ofstream(file) << R"({"utilizationBudget":50,"modules":[)"
                               R"({"tarvekId":"Offset","utilizationPercentage":15},)"
                               R"({"tarvekId":"MonoOffset","utilizationPercentage":30}]})";
        host.loadUtilization(file);
        load(preset({node("a", "Offset"), node("b", "Offset")}, {}));
    }
};

TEST_F(BudgetedHostTest, ALoadAddsTheCostOfEachUnit) {
    EXPECT_EQ(host.getUtilization().getUsed(), 30.0f);
    EXPECT_TRUE(log.has("DspUnitHost-CPU: added Offset, 15.0%, 35.0% left"));
    EXPECT_TRUE(log.has("DspUnitHost-CPU: added Offset, 15.0%, 20.0% left"));
}

TEST_F(BudgetedHostTest, ARemovedUnitGivesItsCostBack) {
    host.removeDspUnit("a");
    EXPECT_EQ(host.getUtilization().getUsed(), 15.0f);
    EXPECT_TRUE(log.has("DspUnitHost-CPU: removed Offset, 15.0%, 35.0% left"));
}

TEST_F(BudgetedHostTest, AUnitOverTheBudgetIsAddedWithAnError) {
    add(node("", "MonoOffset"));
    EXPECT_TRUE(log.has("Error over cpu budget"));
    EXPECT_EQ(host.getNodeIds().size(), 3u);
    EXPECT_EQ(host.getUtilization().getUsed(), 30.0f);
}

TEST_F(BudgetedHostTest, AReplacementSwapsTheCosts) {
    DspArchive archive(node("", "MonoOffset"));
    host.replaceDspUnit("a", archive);
    EXPECT_EQ(host.getUtilization().getUsed(), 45.0f);
    EXPECT_FALSE(log.has("Error over cpu budget"));
    host.replaceDspUnit("b", archive);
    EXPECT_TRUE(log.has("Error over cpu budget"));
    EXPECT_EQ(host.getUtilization().getUsed(), 45.0f);
}

TEST_F(BudgetedHostTest, APresetOverTheBudgetWarnsAndLoads) {
    load(preset({node("a", "MonoOffset"), node("b", "MonoOffset")}, {}));
    EXPECT_TRUE(log.has("Warn preset cpu usage is over budget, 50.0%"));
    EXPECT_EQ(host.getNodeIds().size(), 2u);
}

}  // namespace
