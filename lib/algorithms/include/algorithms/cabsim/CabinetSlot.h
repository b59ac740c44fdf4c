// One of the two places for a measured cabinet: its convolver, filters, level and place between the outputs.
//
//   mono -> convolver -> low-pass -> high-pass -> level -+-> x min(1, 1 - pan) -> left
//                                                        +-> x min(1, 1 + pan) -> right
//
// Without a cabinet, or while another unit owns the convolver, both channels pass as they are.
//
// Threads: setters on control threads, one at a time, process on the audio thread. The pool keeps a convolver
// that is given back, so that the block under way may finish in it.
#pragma once

#include <atomic>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "algorithms/cabsim/CabinetTone.h"
#include "algorithms/cabsim/IRStream.h"
#include "math/OnePoleRamp.h"

class IRProcessor;

class CabinetSlot {
public:
    // blockLength: samples per call, at sampleRate (Hz).
    CabinetSlot(int blockLength, float sampleRate);

    // The convolver's share; null is none.
    void take(std::shared_ptr<IRProcessor> irProcessor);

    // Dry from now on. False when there was no convolver.
    bool giveBack();

    bool hasProcessor() const { return share_ != nullptr; }

    // Takes the convolver's stream with this response; an empty one is no cabinet. Without a convolver the
    // slot stays dry.
    void select(const std::string& id, std::span<const float> response);
    const std::string& cabId() const { return cabId_; }

    CabinetTone& tone() { return tone_; }
    void setPan(float pan, bool isInit);  // -1 left, 0 both, 1 right

    // One block into outputs that are none of the inputs.
    void process(const float* inL, const float* inR, float* outL, float* outR);

private:
    bool convolve(const float* inL, const float* inR, float* out);

    const int blockLength_;
    std::vector<float> mono_;
    std::shared_ptr<IRProcessor> share_;
    IRStream stream_;
    std::string cabId_ = "None";
    CabinetTone tone_;
    OnePoleRamp pan_;
    std::atomic<bool> isActive_{false};
};
