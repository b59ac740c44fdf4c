// Durations from one thread, counted without a lock, for quantiles that any thread may ask for.
//
// Bins are 0.1 us wide up to 20 ms; longer durations fall into the last one. Mean and maximum are exact to
// the nanosecond.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <vector>

namespace tvk::desk {

class Histogram {
public:
    Histogram() : bins_(kBins) {}

    // Counts one duration; a negative one counts as zero. One thread.
    void add(std::chrono::nanoseconds duration);

    std::uint64_t count() const { return count_.load(std::memory_order_relaxed); }

    // Microseconds; 0 when nothing was counted.
    double meanUs() const;
    double maxUs() const;

    // The smallest bin edge, in microseconds, that at least the share 0 < quantile <= 1 of durations lies
    // under, but never more than the maximum.
    double quantileUs(double quantile) const;

    // Forgets everything. The adding thread must be at rest.
    void clear();

private:
    static constexpr std::int64_t kBinNs = 100;
    static constexpr std::size_t kBins = 200000;

    std::vector<std::atomic<std::uint32_t>> bins_;
    std::atomic<std::uint64_t> count_{0};
    std::atomic<std::int64_t> sumNs_{0};
    std::atomic<std::int64_t> maxNs_{0};
};

}  // namespace tvk::desk
