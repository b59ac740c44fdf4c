// A taper by the name that unit definitions use.
//
//   t50                 linear
//   tN,  N = 5..45      exponential, N per cent at mid-travel
//   tNr                 logarithmic, 100 - N per cent at mid-travel
//   tNi, tNri           the inverse laws of tN and tNr
//   an s after N or r   the S-curve of the same law: tNs, tNsi, tNrs, tNrsi
//
// N goes in steps of 5. An unknown name is an error line and the linear law.
//
// Threads: calc and inverse from any; control rate, since each costs a virtual call and a power.
#pragma once

#include <memory>
#include <string>

#include "math/ITaper.h"

class StandardTaper {
public:
    explicit StandardTaper(const std::string& name);

    float calc(float x) const { return taper_->calc(x); }
    float inverse(float y) const { return taper_->inverse(y); }

private:
    std::unique_ptr<ITaper> taper_;
};
