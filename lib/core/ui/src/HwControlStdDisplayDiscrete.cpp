#include "core/ui/HwControlStdDisplayDiscrete.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "KnobPosition.h"
#include "utility/Log.h"

HwControlStdDisplayDiscrete::HwControlStdDisplayDiscrete(DspArchive& archive)
    : HwControlStdDisplay<int>(archive),
      min_(getRequired(archive, "min", 0)),
      max_(getRequired(archive, "max", 1)),
      inc_(std::max(1, getOptional(archive, "inc", 1))),
      current_(min_) {}

void HwControlStdDisplayDiscrete::sendInRange(std::int64_t value) {
    if (!isInRange(value)) {
        TVK_WARN("range error");
        return;
    }
    send(static_cast<int>(value));
}

void HwControlStdDisplayDiscrete::setFromBool(bool on) {
    sendInRange(on ? max_ : min_);
}

void HwControlStdDisplayDiscrete::setFromPosition(float position) {
    const double span = static_cast<double>(max_) - min_;
    const double steps = std::floor(0.5 + span * static_cast<double>(limitPosition(position)) / inc_);
    sendInRange(std::min(min_ + static_cast<std::int64_t>(steps) * inc_, static_cast<std::int64_t>(max_)));
}

void HwControlStdDisplayDiscrete::setFromString(const std::string& value) {
    try {
        sendInRange(std::stoi(value));
    } catch (const std::logic_error&) {  // no number, or one beyond the range of int
        TVK_WARN("Invalid value sent to the set function, %s", value.c_str());
    }
}

void HwControlStdDisplayDiscrete::setFromEncoder(int ticks) {
    sendInRange(current_ + static_cast<std::int64_t>(ticks) * inc_);
}

void HwControlStdDisplayDiscrete::update(const int& value) {
    if (!isInRange(value)) TVK_WARN("range error");
    current_ = value;
    onDisplayUpdate();
}

float HwControlStdDisplayDiscrete::getPosition() const {
    if (max_ <= min_) return 0.0f;
    const double span = static_cast<double>(max_) - min_;
    return limitPosition(static_cast<float>((static_cast<double>(current_) - min_) / span));
}
