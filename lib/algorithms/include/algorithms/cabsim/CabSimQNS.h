// Two measured cabinets side by side, each with a convolver of its own from the pool.
//
//   in -+-> first cabinet  -> x (1 - blend) -+-> out
//       +-> second cabinet -> x blend -------+       while the second is disabled, the first alone
//
// Ids are those of the cabinet table; "None" passes the input.
//
// Threads: setters on control threads, one at a time; a selection blocks for the load. process on the audio
// thread.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "algorithms/cabsim/CabSimQNSBase.h"
#include "algorithms/cabsim/CabinetSlot.h"
#include "algorithms/cabsim/CabinetTable.h"
#include "math/OnePoleRamp.h"

class CabSimQNS {
public:
    // Reads every row's response; a row whose file cannot be read is left out. blockLength: samples per call,
    // at sampleRate (Hz).
    CabSimQNS(int blockLength, float sampleRate, std::span<const CabinetRow> table = cabinetTable());

    // Gives the convolvers back.
    ~CabSimQNS();
    CabSimQNS(const CabSimQNS&) = delete;
    CabSimQNS& operator=(const CabSimQNS&) = delete;

    // Take the pool's first and second convolver; a pool that has none, or is missing, is a warning.
    void initIRProc();
    void initIRProcCab2();

    // The second cabinet, with its convolver, comes and goes. Without one it stays off.
    void enableCabSim2();
    void disableCabSim2();

    // An unknown id is a warning and leaves the cabinet.
    void setCabSimID(const std::string& name);
    void setCabSimIDCab2(const std::string& name);

    CabinetSlot& first() { return first_; }
    CabinetSlot& second() { return second_; }
    void setBlend(float blend, bool isInit);  // 0 the first, 1 the second

    // One block; outputs may be the inputs.
    void process(const float* inL, const float* inR, float* outL, float* outR);

private:
    // missing and which: the words of its two warnings that tell the slots apart.
    void takeProcessor(CabinetSlot& slot, std::size_t place, const char* missing, const char* which);
    void select(CabinetSlot& slot, const std::string& name);

    CabinetSlot first_;
    CabinetSlot second_;
    std::atomic<bool> cab2Enabled_{false};
    OnePoleRamp blend_;
    std::map<std::string, std::unique_ptr<CabSimQNSBase>> list_;
    std::vector<float> firstLeft_, firstRight_, secondLeft_, secondRight_;
};
