// Timing of cases over a stretch of guitar.
//
// Every figure is a minimum over repeats: an interruption hits one repeat, what a thing costs in every repeat
// is its own. The repeats come in rounds that go through all cases, so that a machine that is slow for a
// while is so for every case and for the reference.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Cases.h"
#include "Reference.h"

namespace bench {

// The lowest cost seen at each position.
class LowestCosts {
public:
    explicit LowestCosts(int positions);
    void add(int position, double cost);
    double mean() const;
    double highest() const;

private:
    std::vector<double> costs_;
};

class Measurement {
public:
    // guitar: whole turns of Case::kBlocksPerTurn blocks; it outlives the measurement.
    Measurement(const NamedCase& named, const std::vector<float>& guitar);

    // Plays the guitar `repeats` times in turns and as often block by block, on an object of the round's own:
    // one that stays would have its threads look for work while other cases are timed.
    void round(int repeats);

    const std::string& name() const { return name_; }
    // Microseconds per block: the mean over all turns, or over all blocks where other threads work between
    // them.
    double meanMicroseconds() const {
        return hasBackground_ ? blockCosts_.mean() : turnCosts_.mean() / Case::kBlocksPerTurn;
    }
    // The dearest block position over the mean of all positions.
    double worstOverMean() const { return blockCosts_.highest() / blockCosts_.mean(); }

private:
    std::string name_;
    std::function<std::unique_ptr<Case>()> make_;
    bool hasBackground_ = false;
    const std::vector<float>& guitar_;
    int turns_;
    LowestCosts turnCosts_;
    LowestCosts blockCosts_;
};

class ReferenceMeasurement {
public:
    void round(int repeats);
    // Microseconds of one pair of transforms.
    double microseconds() const { return cost_.mean(); }

private:
    Reference reference_;
    LowestCosts cost_{1};
};

}  // namespace bench
