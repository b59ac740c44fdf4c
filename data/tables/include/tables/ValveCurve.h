// The stored transfer curve of one valve stage: eight cubic segments over the normalised input -1 to 1.
#pragma once

namespace tables {

// Segment i holds where breakpoints[i - 1] < x <= breakpoints[i]; the first reaches down to -1, the last up
// to
// 1. Its value is ((a x + b) x + c) x + d in x itself, not in the distance from the segment's start.
struct ValveCurve {
    float breakpoints[7];
    float segments[8][4];  // a, b, c, d
};

}  // namespace tables
