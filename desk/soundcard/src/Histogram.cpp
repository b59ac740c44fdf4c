#include "desk/soundcard/Histogram.h"

#include <algorithm>
#include <cmath>

namespace tvk::desk {

void Histogram::add(std::chrono::nanoseconds duration) {
    const std::int64_t ns = std::max<std::int64_t>(duration.count(), 0);
    const std::size_t bin = std::min(static_cast<std::size_t>(ns / kBinNs), kBins - 1);
    bins_[bin].fetch_add(1, std::memory_order_relaxed);
    count_.fetch_add(1, std::memory_order_relaxed);
    sumNs_.fetch_add(ns, std::memory_order_relaxed);
    if (ns > maxNs_.load(std::memory_order_relaxed)) maxNs_.store(ns, std::memory_order_relaxed);
}

double Histogram::meanUs() const {
    const std::uint64_t n = count();
    return n == 0
               ? 0.0
               : static_cast<double>(sumNs_.load(std::memory_order_relaxed)) / static_cast<double>(n) * 1e-3;
}

double Histogram::maxUs() const {
    return static_cast<double>(maxNs_.load(std::memory_order_relaxed)) * 1e-3;
}

double Histogram::quantileUs(double quantile) const {
    const auto wanted = static_cast<std::uint64_t>(std::ceil(quantile * static_cast<double>(count())));
    std::uint64_t seen = 0;
    for (std::size_t bin = 0; bin < kBins && wanted > 0; ++bin) {
        seen += bins_[bin].load(std::memory_order_relaxed);
        if (seen >= wanted) return std::min(static_cast<double>((bin + 1) * kBinNs) * 1e-3, maxUs());
    }
    return 0.0;
}

void Histogram::clear() {
    for (auto& bin : bins_)
        bin.store(0, std::memory_order_relaxed);
    count_.store(0, std::memory_order_relaxed);
    sumNs_.store(0, std::memory_order_relaxed);
    maxNs_.store(0, std::memory_order_relaxed);
}

}  // namespace tvk::desk
