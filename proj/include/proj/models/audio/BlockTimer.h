// Told by the audio thread when a block's computation begins and ends; the waits for the device lie outside.
//
// The product has none. A desk measures with it how much of the period the engine needs.
#pragma once

class BlockTimer {
public:
    virtual ~BlockTimer() = default;

    // Audio thread: neither may allocate, lock or log.
    virtual void blockStarts() = 0;
    virtual void blockEnds() = 0;
};
