#include "Measure.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <numeric>

#include "Reference.h"

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

Cost measure(Case& unit, const std::vector<float>& guitar, int repeats) {
    const int blocks = static_cast<int>(guitar.size()) / kBlockLength;
    const auto block = [&](int i) { return guitar.data() + i * kBlockLength; };

    double mean = std::numeric_limits<double>::max();
    for (int repeat = 0; repeat < repeats; ++repeat) {
        const double start = nowMicroseconds();
        for (int i = 0; i < blocks; ++i)
            unit.process(block(i), i);
        mean = std::min(mean, (nowMicroseconds() - start) / blocks);
    }

    // An interruption hits one repeat of a block; what a block costs in every repeat is its own.
    const double clock = clockMicroseconds();
    std::vector<double> lowest(static_cast<std::size_t>(blocks), std::numeric_limits<double>::max());
    for (int repeat = 0; repeat < repeats; ++repeat) {
        for (int i = 0; i < blocks; ++i) {
            const double start = nowMicroseconds();
            unit.process(block(i), i);
            double& cost = lowest[static_cast<std::size_t>(i)];
            cost = std::min(cost, std::max(nowMicroseconds() - start - clock, 0.0));
        }
    }
    const double meanOfLowest = std::accumulate(lowest.begin(), lowest.end(), 0.0) / blocks;
    return {mean, *std::max_element(lowest.begin(), lowest.end()) / meanOfLowest};
}

double measureReference(int runs) {
    constexpr int kPairs = 50;
    static Reference reference;
    double lowest = std::numeric_limits<double>::max();
    for (int run = 0; run < runs; ++run) {
        const double start = nowMicroseconds();
        for (int i = 0; i < kPairs; ++i)
            reference.run();
        lowest = std::min(lowest, (nowMicroseconds() - start) / kPairs);
    }
    return lowest;
}

}  // namespace bench
