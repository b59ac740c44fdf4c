#include <fstream>
#include <gtest/gtest.h>

#include "core/System/DspArchive.h"
#include "core/System/ProcessorUtilizationManager.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"

namespace {

ProcessorUtilizationManager costs(const std::string& budget = "95") {
    return ProcessorUtilizationManager(
        DspArchive(R"({"utilizationBudget":)" + budget +
                   R"(,"modules":[{"tarvekId":"A","utilizationPercentage":40},)"
                   R"({"tarvekId":"B","utilizationPercentage":54.6},)"
                   R"({"tarvekId":"C","utilizationPercentage":55.5}]})"));
}

TEST(ProcessorUtilization, AnUnknownTypeCostsTwenty) {
    LogRecorder log;
    EXPECT_EQ(costs().getCost("Z"), 20.0f);
    EXPECT_EQ(ProcessorUtilizationManager().getCost("A"), 20.0f);
    EXPECT_EQ(costs().getCost("A"), 40.0f);
    EXPECT_TRUE(log.has("ProcessorUtilizationManager: tarvekId not known, Z"));
}

TEST(ProcessorUtilization, ASumIsRoundedBeforeItIsHeldAgainstTheBudget) {
    ProcessorUtilizationManager manager = costs();
    EXPECT_TRUE(manager.tryAdd("A"));
    EXPECT_TRUE(manager.tryAdd("B")) << "94.6 rounds to 95";
    EXPECT_FLOAT_EQ(manager.getUsed(), 94.6f);
    manager.remove("B");
    EXPECT_FALSE(manager.tryAdd("C")) << "95.5 rounds to 96";
}

TEST(ProcessorUtilization, AUnitThatDoesNotFitLeavesTheSumAndAddDoesNot) {
    ProcessorUtilizationManager manager = costs("30");
    EXPECT_FALSE(manager.tryAdd("A"));
    EXPECT_EQ(manager.getUsed(), 0.0f);
    manager.add("A");
    EXPECT_EQ(manager.getUsed(), 40.0f);
    EXPECT_EQ(manager.getRemaining(), 0.0f) << "never negative";
}

TEST(ProcessorUtilization, AfterClearTheWholeBudgetRemains) {
    ProcessorUtilizationManager manager = costs();
    manager.add("A");
    EXPECT_EQ(manager.getRemaining(), 55.0f);
    manager.clear();
    EXPECT_EQ(manager.getRemaining(), manager.getBudget());
}

TEST(ProcessorUtilization, APresetWithoutAGraphPassesAtNothing) {
    const LogRecorder log;
    ProcessorUtilizationManager manager = costs();
    manager.add("A");
    DspArchive archive("{}");
    EXPECT_TRUE(manager.checkPreset(archive));
    EXPECT_EQ(manager.getUsed(), 0.0f);
}

TEST(ProcessorUtilization, APresetIsTheSumOfItsNodesAndOfTheFirstOfEachGroup) {
    LogRecorder log;
    ProcessorUtilizationManager manager = costs("200");
    DspArchive archive(R"({"audioGraph":{"nodes":[{"TarvekId":"A"},{"TarvekId":"Z"}],)"
                       R"("guitarNodes":{"0":{"group":[{"TarvekId":""},{"TarvekId":"A"},{"TarvekId":"C"}]},)"
                       R"("1":{"group":[]}},"micNodes":{"0":{"group":[]}}}})");
    EXPECT_TRUE(manager.checkPreset(archive));
    EXPECT_EQ(manager.getUsed(), 40.0f + 20.0f + 40.0f);
    EXPECT_TRUE(log.has("ProcessorUtilizationManager: No node in this guitar group."));
    EXPECT_TRUE(log.has("ProcessorUtilizationManager: No node in this mic group."));
}

TEST(ProcessorUtilization, APresetOverTheBudgetWarnsWithItsSum) {
    LogRecorder log;
    ProcessorUtilizationManager manager = costs("50");
    DspArchive archive(R"({"audioGraph":{"nodes":[{"TarvekId":"A"},{"TarvekId":"Z"}]}})");
    EXPECT_FALSE(manager.checkPreset(archive));
    EXPECT_EQ(manager.getUsed(), 60.0f);
    EXPECT_TRUE(log.has("Warn Preset is over budget at 60.0%\n"));
}

TEST(ProcessorUtilization, AFileIsReadWithALineForEachItem) {
    LogRecorder log;
    const TemporaryFolder folder;
    const std::string file = folder.file("costs.json");
    std::ofstream(file)
        << R"({"utilizationBudget":80,"modules":[{"tarvekId":"A","utilizationPercentage":3}]})";
    const ProcessorUtilizationManager manager(file);
    EXPECT_EQ(manager.getBudget(), 80.0f);
    EXPECT_EQ(manager.getCost("A"), 3.0f);
    EXPECT_TRUE(log.has("ProcessorUtilizationData: reading " + file));
    EXPECT_TRUE(log.has("ProcessorUtilizationData: utilizationBudget is 80.000000"));
    EXPECT_TRUE(log.has("ProcessorUtilizationData: added A : 3.000000"));
}

TEST(ProcessorUtilization, FaultsInTheFileAreLinesAndLeaveDefaults) {
    LogRecorder log;
    const TemporaryFolder folder;
    const std::string file = folder.file("costs.json");
    EXPECT_EQ(ProcessorUtilizationManager(file).getBudget(), 0.0f);
    EXPECT_TRUE(log.has("ProcessorUtilizationData: " + file + " not found"));

    std::ofstream(file) << "{ broken";
    EXPECT_EQ(ProcessorUtilizationManager(file).getBudget(), 0.0f);
    EXPECT_TRUE(log.has("Warn Problems reading " + file));

    std::ofstream(file) << "{}";
    EXPECT_EQ(ProcessorUtilizationManager(file).getBudget(), 0.0f);
    EXPECT_TRUE(log.has("Warn utilizationBudget not found"));
    EXPECT_TRUE(log.has("Warn modules array is missing"));

    std::ofstream(file) << R"({"utilizationBudget":80,"modules":[{"tarvekId":"A"},5,)"
                           R"({"tarvekId":"B","utilizationPercentage":2}]})";
    EXPECT_EQ(ProcessorUtilizationManager(file).getCost("B"), 2.0f);
    EXPECT_TRUE(log.has("Warn array item 0 is missing"));
    EXPECT_TRUE(log.has("Warn array item 1 is missing"));
}

}  // namespace
