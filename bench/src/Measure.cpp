#include "Measure.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <numeric>

namespace bench {
namespace {

double nowMicroseconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double, std::micro>(now).count();
}

// What two readings of the clock cost by themselves.
double clockMicroseconds() {
    double lowest = std::numeric_limits<double>::max();
    for (int i = 0; i < 1000; ++i) {
        const double start = nowMicroseconds();
        lowest = std::min(lowest, nowMicroseconds() - start);
    }
    return lowest;
}

}  // namespace

LowestCosts::LowestCosts(int positions)
    : costs_(static_cast<std::size_t>(positions), std::numeric_limits<double>::max()) {}

void LowestCosts::add(int position, double cost) {
    double& lowest = costs_[static_cast<std::size_t>(position)];
    lowest = std::min(lowest, cost);
}

double LowestCosts::mean() const {
    return std::accumulate(costs_.begin(), costs_.end(), 0.0) / static_cast<double>(costs_.size());
}

double LowestCosts::highest() const {
    return *std::max_element(costs_.begin(), costs_.end());
}

Measurement::Measurement(const NamedCase& named, const std::vector<float>& guitar)
    : name_(named.name),
      make_(named.make),
      guitar_(guitar),
      turns_(static_cast<int>(guitar.size()) / (kBlockLength * Case::kBlocksPerTurn)),
      turnCosts_(turns_),
      blockCosts_(turns_ * Case::kBlocksPerTurn) {}

void Measurement::round(int repeats) {
    const std::unique_ptr<Case> unit = make_();
    hasBackground_ = unit->hasBackground();
    const auto play = [&](int i) { unit->process(guitar_.data() + i * kBlockLength); };

    // A whole turn between two readings of the clock keeps the clock out of the mean.
    for (int repeat = 0; repeat < repeats && !unit->hasBackground(); ++repeat) {
        for (int turn = 0; turn < turns_; ++turn) {
            unit->control(turn);
            const double start = nowMicroseconds();
            for (int i = 0; i < Case::kBlocksPerTurn; ++i)
                play(turn * Case::kBlocksPerTurn + i);
            turnCosts_.add(turn, nowMicroseconds() - start);
        }
    }

    const double clock = clockMicroseconds();
    for (int repeat = 0; repeat < repeats; ++repeat) {
        for (int i = 0; i < turns_ * Case::kBlocksPerTurn; ++i) {
            if (i % Case::kBlocksPerTurn == 0) unit->control(i / Case::kBlocksPerTurn);
            const double start = nowMicroseconds();
            play(i);
            blockCosts_.add(i, std::max(nowMicroseconds() - start - clock, 0.0));
            unit->background();
        }
    }
}

void ReferenceMeasurement::round(int repeats) {
    constexpr int kPairs = 5;
    for (int repeat = 0; repeat < repeats; ++repeat) {
        const double start = nowMicroseconds();
        for (int i = 0; i < kPairs; ++i)
            reference_.run();
        cost_.add(0, (nowMicroseconds() - start) / kPairs);
    }
}

}  // namespace bench
