// The older cabinets by name, one channel: a filter network for each amplifier, and "None", a wire.
//
// Threads: setCabSim on control threads, one at a time, process on the audio thread. A change writes one
// pointer, read once per block; a network starts empty when it comes in.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>

#include "algorithms/cabsim/ICabSim.h"

class CabSimList {
public:
    // All networks, none selected. blockLength: samples per call, at sampleRate (Hz).
    CabSimList(int blockLength, float sampleRate);

    // False for a name that is not in the list; the cabinet stays then.
    bool setCabSim(const std::string& name);

    // count: the block length. In place allowed.
    void process(const float* in, float* out, int count);

private:
    std::map<std::string, std::unique_ptr<ICabSim>> networks_;
    std::atomic<ICabSim*> selected_{nullptr};
    ICabSim* running_ = nullptr;  // the audio thread's
};
