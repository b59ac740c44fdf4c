// For everything that the models save or delete: the power goes at every call that reaches the disk, in every
// way that it can, and the program starts again on every disk that could be left. And what a save needs, left
// out, is found.
#include <cstdio>
#include <gtest/gtest.h>
#include <memory>

#include "PowerCutCheck.h"
#include "support/card/EngineOnCard.h"

namespace {

using Faults = PowerCutCheck::Faults;

constexpr DiskKind kKinds[] = {DiskKind::NamesByFolder, DiskKind::NamesByFile};

class PowerCut : public testing::Test {
protected:
    // What the check says on either kind of disk; empty when it passes on both.
    std::string findingWith(const Scenario& scenario, const Layer& layer) {
        for (const DiskKind kind : kKinds) {
            PowerCutCheck check(engine.model(), log, kind);
            check.cutEverywhere(scenario, Faults::KillsOnly, layer);
            const std::string finding = check.finding();
            if (!finding.empty()) return finding;
        }
        return {};
    }

    LogRecorder log;
    EngineOnCard engine;
    std::vector<Scenario> all = scenarios(engine.model());
};

TEST_F(PowerCut, LeavesEveryFileOldOrNewKeepsWhatSucceededAndStandsInNoNextSavesWay) {
    long crashPoints = 0, startsAgain = 0, unlisted = 0, withoutFile = 0;
    for (const DiskKind kind : kKinds) {
        PowerCutCheck check(engine.model(), log, kind);
        for (const Scenario& scenario : all) {
            check.cutEverywhere(scenario, Faults::All);
            EXPECT_EQ(check.finding(), "");
        }
        crashPoints += check.crashPoints();
        startsAgain += check.startsAgain();
        unlisted += check.unlistedResponses();
        withoutFile += check.recordsWithoutFile();
    }
    RecordProperty("crash points", static_cast<int>(crashPoints));
    std::printf(
        "%ld crash points, started again on %ld different disks, %ld with a file that no record tells "
        "of, %ld with a record whose file is gone\n",
        crashPoints, startsAgain, unlisted, withoutFile);
    EXPECT_GE(crashPoints, 1000);
    EXPECT_GT(unlisted, 0);
    EXPECT_GT(withoutFile, 0);
}

TEST_F(PowerCut, IsFoundWhereAnyOneSyncIsLeftOut) {
    PowerCutCheck counter(engine.model(), log, DiskKind::NamesByFolder);
    for (const Scenario& scenario : all) {
        const long syncs = counter.syncsOf(scenario);
        EXPECT_GT(syncs, 0) << scenario.name;
        for (long which = 0; which < syncs; ++which) {
            const auto layer = [which](DiskModel& disk) {
                return std::make_unique<LeavesOutASync>(disk, which);
            };
            EXPECT_NE(findingWith(scenario, layer), "") << scenario.name << " without sync " << which;
        }
    }
}

TEST_F(PowerCut, IsFoundWhereTheNameComesBeforeTheContents) {
    for (const Scenario& scenario : all) {
        if (!scenario.saves) continue;
        const auto layer = [](DiskModel& disk) { return std::make_unique<RenamesFirst>(disk); };
        EXPECT_NE(findingWith(scenario, layer), "") << scenario.name;
    }
}

TEST_F(PowerCut, IsFoundWhereAFileIsWrittenInPlace) {
    for (const Scenario& scenario : all) {
        if (!scenario.saves) continue;
        const auto layer = [](DiskModel& disk) { return std::make_unique<WritesInPlace>(disk); };
        EXPECT_NE(findingWith(scenario, layer), "") << scenario.name;
    }
}

}  // namespace
