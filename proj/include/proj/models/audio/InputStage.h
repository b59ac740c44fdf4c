// The guitars out of the capture channels: each input arrives on two, a sensitive and a robust range.
//
//   channel 0 (sensitive), 1 (robust) -> DC off -> combiner 0 -> graph input 1
//   channel 2 (sensitive), 3 (robust) -> DC off -> combiner 1 -> graph input 0
//   graph input 0 + graph input 1 -> the mono sum
//
// Audio thread.
#pragma once

#include <array>
#include <cstddef>

#include "proj/models/audio/DcTracker.h"
#include "proj/models/audio/InputRangeCombiner.h"

class InputStage {
public:
    // deltaDb: how much more gain the sensitive ranges have.
    InputStage(float sampleRateHz, float deltaDb);

    // frames: interleaved capture, at least 4 of `channels` floats a frame. The outputs hold `count` each.
    void process(const float* frames, std::size_t channels, std::size_t count, float* input0, float* input1,
                 float* sum);

private:
    std::array<DcTracker, 4> dcTrackers_;
    InputRangeCombiner rangeCombiner0_;
    InputRangeCombiner rangeCombiner1_;
    bool isLoud_ = false;  // one for both combiners, the first before the second in each frame
};
