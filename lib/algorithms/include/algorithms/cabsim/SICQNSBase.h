// One speaker's impedance curve: how the response of a valve power amp follows the load.
#pragma once

class SICQNSBase {
public:
    virtual ~SICQNSBase() = default;

    // One block; in place allowed. Audio thread.
    virtual void process(const float* in, float* out) = 0;
};
