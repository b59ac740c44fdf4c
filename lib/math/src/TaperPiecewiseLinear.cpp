#include "math/TaperPiecewiseLinear.h"

#include <algorithm>

#include "utility/Log.h"

namespace {

constexpr const char* kTag = "TaperPiecewiseLinear";

}  // namespace

void TaperPiecewiseLinear::addSegments(const std::vector<float>& endpoints) {
    if (endpoints.size() < 2) {
        TVK_ERROR("need at least 2 segment endpoints to use this class");
        return;
    }
    for (size_t i = 0; i + 1 < endpoints.size(); ++i) {
        segments_.emplace_back(endpoints[i], endpoints[i + 1]);
        tvk::log::debug(kTag, "added segment: min=%f, max=%f", endpoints[i], endpoints[i + 1]);
    }
    initialised_ = true;
}

float TaperPiecewiseLinear::calc(float knob) const {
    if (!initialised_) {
        TVK_ERROR("calc called before endpoints initialized");
        return 0.0f;
    }
    const float limited = knob > 0.0f ? std::min(knob, 1.0f) : 0.0f;  // sends a not-a-number to 0
    const int segments = static_cast<int>(segments_.size());
    const float p = limited * static_cast<float>(segments);
    const int index = std::min(static_cast<int>(p), segments - 1);
    const auto [min, max] = segments_[static_cast<size_t>(index)];
    const float offset = p - static_cast<float>(index);
    const float value = min + (max - min) * offset;
    tvk::log::debug(kTag, "knob=%0.1f, index=%d, offset=%0.2f, min=%0.3f, max=%0.3f, value=%0.3f", limited,
                    index, offset, min, max, value);
    return value;
}
