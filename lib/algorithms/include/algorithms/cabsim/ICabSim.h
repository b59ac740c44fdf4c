// A cabinet of the older kind: a network of filters with fixed values.
#pragma once

class ICabSim {
public:
    virtual ~ICabSim() = default;

    // One block; in place allowed. Audio thread.
    virtual void process(const float* in, float* out) = 0;

    // Empties the filters.
    virtual void reset() = 0;
};
