// Cuts the power at every call that something the models do makes to the disk, in every way that it can be
// cut, starts the program again on every disk that could be left, and says what is wrong.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "DiskModel.h"
#include "Mutants.h"
#include "Scenarios.h"
#include "support/LogRecorder.h"

class PowerCutCheck {
public:
    // How much is tried. KillsOnly: the power goes before each call, nothing else fails.
    enum class Faults { All, KillsOnly };

    PowerCutCheck(Model& engine, LogRecorder& log, DiskKind kind) : engine_(engine), log_(log), kind_(kind) {}

    // Ends at the first thing that is wrong. layer: what lies between the models and the disk.
    void cutEverywhere(const Scenario& scenario, Faults faults, Layer layer = {});

    // The first thing that was wrong since the last call, with where; empty when nothing was.
    std::string finding();

    // Syncs that the scenario makes when nothing fails.
    long syncsOf(const Scenario& scenario);

    long crashPoints() const { return crashPoints_; }         // faults that were tried
    long startsAgain() const { return startsAgain_; }         // on disks that differ
    long unlistedResponses() const { return unlisted_; }      // disks with a file that the catalogue omits
    long recordsWithoutFile() const { return withoutFile_; }  // disks with a record whose file is not there

private:
    // What the models say after a start.
    struct State {
        std::uint32_t taper = 0;
        bool bright = false;
        tvk::CabsimModel::Slots slots;
        std::vector<tvk::UserIR> userIRs;
    };

    // How a run of a scenario ended.
    struct End {
        bool isDone = false;  // the client was told that it is done
        std::vector<std::string> complaints;
        std::vector<DiskContents> leftovers;
        DiskContents durable;
        DiskContents seen;
        std::vector<DiskCall> calls;
    };

    End run(const Scenario& scenario, const DiskFault& fault);
    bool isDone(const Scenario& scenario, Amplifier& amp) const;
    State stateOn(const DiskContents& contents);
    std::vector<tvk::UserIR> listFor(const DiskContents& disk);

    void inject(const Scenario& scenario, const DiskFault& fault);
    void injectAllInto(const Scenario& scenario, long call, const DiskCall& victim);
    void checkPromises(const Scenario& scenario, const End& end);
    void checkDurable(const End& end);
    void checkStartsAgain(const DiskContents& left);
    void checkWholeFiles(const DiskContents& left);
    void checkModels(const DiskContents& left);
    void checkNextSave(const DiskContents& left);
    void require(bool holds, const std::string& wrong);

    Model& engine_;
    LogRecorder& log_;
    const DiskKind kind_;
    Layer layer_;

    std::string where_;
    std::string finding_;
    DiskContents before_, after_;
    State stateBefore_, stateAfter_;
    std::vector<std::string> usualComplaints_;
    std::set<DiskContents> checked_;
    long crashPoints_ = 0;
    long startsAgain_ = 0;
    long unlisted_ = 0;
    long withoutFile_ = 0;
};
