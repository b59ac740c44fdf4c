// The terminals of a host, seen from inside its graph: a unit whose outputs carry the host's inputs into the
// graph and whose inputs collect what goes to the host's outputs. With it comes the graph's run list.
#pragma once

#include "core/DspUnit/DspUnit.h"
#include "core/System/Runlist.h"

class DspUnitRunlist : public DspUnit {
public:
    // The name and the channel counts of the host it belongs to; blockLength in samples.
    DspUnitRunlist(const std::string& hostId, int hostInputs, int hostOutputs, int blockLength)
        : DspUnit(hostId, hostOutputs, hostInputs, blockLength) {}

    void reset() override {}
    // Runs the units of the active list in their order, within a block of the run list's epoch.
    void process() override {
        for (IDspUnit* unit : runlist_.active())
            unit->process();
    }
    void init(DspArchive&) override {}
    void getArchive(DspArchive&) override {}

    Runlist& runlist() { return runlist_; }
    const Runlist& runlist() const { return runlist_; }

private:
    Runlist runlist_;
};
