// The speaker impedance curve by the speaker's name; "None" is flat.
//
//   left, right -> (left + right) / 2 -> curve -> both outputs
//
// Threads: setSICID on control threads, one at a time, process on the audio thread. A change writes one
// pointer, which the audio thread reads once per block; every curve lives as long as the object.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "algorithms/cabsim/CabinetTable.h"
#include "algorithms/cabsim/SICQNSBase.h"

class SICQNS {
public:
    // Builds every row's curve. blockLength: samples per call, at sampleRate (Hz). sicId: the first choice;
    // one that the table does not have is an error in the log and "None".
    SICQNS(int blockLength, float sampleRate, const std::string& sicId = "None",
           std::span<const CabinetRow> table = cabinetTable());

    // A name that is not in the table is an error in the log and selects "None".
    void setSICID(const std::string& name);
    const std::string& sicId() const { return sicId_; }

    // One block; in place allowed.
    void process(const float* inL, const float* inR, float* outL, float* outR);

private:
    // False for an unknown name, which selects "None".
    bool select(const std::string& name);

    const int blockLength_;
    std::vector<float> monoBuffer_;
    std::string sicId_;
    std::map<std::string, std::unique_ptr<SICQNSBase>> curves_;
    std::atomic<SICQNSBase*> active_{nullptr};
};
