#include "render/RenderReport.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <numeric>

namespace tvk::render {

namespace {

constexpr double kFloorDb = -200.0;

// The smallest value that at least the given share of the sorted values does not exceed.
double percentile(const std::vector<double>& sorted, double share) {
    if (sorted.empty()) return 0.0;
    const auto rank = static_cast<std::size_t>(std::ceil(share * static_cast<double>(sorted.size())));
    return sorted[std::max<std::size_t>(rank, 1) - 1];
}

}  // namespace

void OutputLevel::add(float sample) {
    const float magnitude = std::fabs(sample);
    peak_ = std::max(peak_, magnitude);
    squares_ += static_cast<double>(sample) * static_cast<double>(sample);
    ++samples_;
    if (magnitude > 1.0f) ++clipped_;
}

double OutputLevel::rmsDbfs() const {
    if (samples_ == 0 || squares_ == 0.0) return kFloorDb;
    return std::max(10.0 * std::log10(squares_ / static_cast<double>(samples_)), kFloorDb);
}

std::string RenderReport::toJson() const {
    std::vector<double> micros;
    for (const double seconds : blockSeconds)
        micros.push_back(seconds * 1e6);
    std::sort(micros.begin(), micros.end());
    const double sum = std::accumulate(micros.begin(), micros.end(), 0.0);

    nlohmann::ordered_json json;
    json["block"] = blockLength;
    json["rate"] = rateHz;
    json["blocks"] = micros.size();
    json["us_per_block"] = {{"mean", micros.empty() ? 0.0 : sum / static_cast<double>(micros.size())},
                            {"p50", percentile(micros, 0.5)},
                            {"p99", percentile(micros, 0.99)},
                            {"max", percentile(micros, 1.0)}};
    json["peak"] = {levels[0].peak(), levels[1].peak()};
    json["rms_dbfs"] = {levels[0].rmsDbfs(), levels[1].rmsDbfs()};
    json["clipped"] = {levels[0].clipped(), levels[1].clipped()};
    json["warnings"] = warnings;
    return json.dump(4, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

}  // namespace tvk::render
