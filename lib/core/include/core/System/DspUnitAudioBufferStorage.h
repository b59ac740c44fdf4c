// Three signals that the engine offers to all units beside the graph's wires, by index: 0 is the dry guitar
// of the block (the sum of both inputs), 1 the input of the effects loop, 2 its output.
//
// Each is the address of one block of samples, null until the engine sets it, and not owned. The addresses
// are written on a control thread before audio starts; unit factories read them.
#pragma once

class DspUnitAudioBufferStorage {
public:
    static constexpr int kDryGuitar = 0;
    static constexpr int kFxLoopIn = 1;
    static constexpr int kFxLoopOut = 2;
    static constexpr int kBuffers = 3;

    // An index outside 0 to 2 is an error line and changes nothing.
    static void setAddr(int index, float* address);
    // An index outside 0 to 2 is an error line and gives null.
    static float* getAddr(int index);
};
