#include "desk/LevelMeter.h"

#include <algorithm>
#include <cmath>

namespace tvk::desk {

namespace {

constexpr double kFloorDb = -200.0;

}  // namespace

void LevelMeter::add(const FrameRing::Frame* frames, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::array<double, 2> samples = {frames[i].speaker, frames[i].line};
        for (std::size_t feed = 0; feed < samples.size(); ++feed) {
            peak_[feed] = std::max(peak_[feed], std::abs(samples[feed]));
            squares_[feed] += samples[feed] * samples[feed];
        }
    }
    frames_ += count;
}

double LevelMeter::rmsDbfs(std::size_t feed) const {
    if (squares_[feed] == 0.0) return kFloorDb;
    return std::max(10.0 * std::log10(squares_[feed] / static_cast<double>(frames_)), kFloorDb);
}

}  // namespace tvk::desk
