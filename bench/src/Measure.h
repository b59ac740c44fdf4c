// Timing of cases over a stretch of guitar.
#pragma once

#include <vector>

#include "Cases.h"

namespace bench {

struct Cost {
    double meanMicroseconds;  // per block, the lowest of the repeats' means
    double worstOverMean;  // the dearest block position over the mean of all, each its minimum over repeats
};

// The guitar is played to the case `repeats` times, without a reset in between.
Cost measure(Case& unit, const std::vector<float>& guitar, int repeats);

// Microseconds of one pair of transforms, the lowest mean of a few runs.
double measureReference(int runs);

}  // namespace bench
