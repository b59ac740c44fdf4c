#include "core/ui/HwControlStdDisplayContinuous.h"

#include <algorithm>
#include <stdexcept>

#include "KnobPosition.h"
#include "NumberFormat.h"
#include "utility/Log.h"

namespace {

constexpr const char* kTag = "HwControlStdDisplayContinuous";
constexpr const char* kLoadTag = "HCSDC";
constexpr int kUsualNumTicks = 91;

}  // namespace

float HwControlStdDisplayContinuous::Scale::positionOf(float value) const {
    if (max == min) return 0.0f;
    // An S-curve or a power law need not be defined beyond its ends.
    return limitPosition(taper.inverse(limitPosition((value - min) / (max - min))));
}

std::string HwControlStdDisplayContinuous::Scale::textAt(float position) const {
    return formatNumber(format, valueAt(position));
}

HwControlStdDisplayContinuous::Scale HwControlStdDisplayContinuous::readScale(DspArchive& archive,
                                                                              const Scale* fallback) {
    const float min = getRequired(archive, "min", fallback ? fallback->min : 0.0f);
    const float max = getRequired(archive, "max", fallback ? fallback->max : 1.0f);
    const auto optional = [&](const char* key, const std::string& otherwise) {
        return getOptional(archive, key, otherwise);
    };
    const std::string taper = optional("taper", "t50");
    return {min,
            max,
            taper,
            StandardTaper(taper),
            optional("format", fallback ? fallback->format : "%0.1f"),
            optional("units", fallback ? fallback->units : "")};
}

HwControlStdDisplayContinuous::Scale HwControlStdDisplayContinuous::readRemap(DspArchive& archive,
                                                                              const std::string& key,
                                                                              const Scale& fallback) {
    if (!archive.enterObject(key)) {
        return {fallback.min,    fallback.max,  fallback.taperName, StandardTaper(fallback.taperName),
                fallback.format, fallback.units};
    }
    Scale scale = readScale(archive, &fallback);
    archive.leaveObject();
    return scale;
}

HwControlStdDisplayContinuous::HwControlStdDisplayContinuous(DspArchive& archive)
    : HwControlStdDisplay<float>(archive),
      scale_(readScale(archive, nullptr)),
      remap_(readRemap(archive, "remap", scale_)),
      remapMinimized_(readRemap(archive, "remapMinimized", remap_)),
      numTicks_(std::max(1, getOptional(archive, "numTicks", kUsualNumTicks))),
      currentValue_(scale_.min) {
    logDefinition();
}

void HwControlStdDisplayContinuous::logDefinition() const {
    using tvk::log::debug;
    const auto number = [](float value) { return static_cast<double>(value); };
    debug(kLoadTag, "format = %s", scale_.format.c_str());
    debug(kLoadTag, "max = %f", number(scale_.max));
    debug(kLoadTag, "numTicks = %d", numTicks_);
    debug(kLoadTag, "remapFormat = %s", remap_.format.c_str());
    debug(kLoadTag, "remapMax = %f", number(remap_.max));
    debug(kLoadTag, "remapMin = %f", number(remap_.min));
    debug(kLoadTag, "remapMinimizedFormat = %s", remapMinimized_.format.c_str());
    debug(kLoadTag, "remapMinimizedMax = %f", number(remapMinimized_.max));
    debug(kLoadTag, "remapMinimizedMin = %f", number(remapMinimized_.min));
    debug(kLoadTag, "remapMinimizedTaper = %s", remapMinimized_.taperName.c_str());
    debug(kLoadTag, "remapTaper = %s", remap_.taperName.c_str());
    debug(kLoadTag, "taper = %s", scale_.taperName.c_str());
}

void HwControlStdDisplayContinuous::setFromBool(bool on) {
    send(on ? scale_.max : scale_.min);
}

void HwControlStdDisplayContinuous::setFromPosition(float position) {
    send(scale_.valueAt(limitPosition(position)));
}

void HwControlStdDisplayContinuous::setFromString(const std::string& value) {
    float wireValue = 0.0f;
    try {
        wireValue = std::stof(value);
    } catch (const std::logic_error&) {  // no number, or one beyond the range of float
        TVK_WARN("Invalid value sent to the set function, %s", value.c_str());
        return;
    }
    const auto [lowest, highest] = std::minmax(scale_.min, scale_.max);
    if (!(wireValue >= lowest && wireValue <= highest)) {
        TVK_WARN("calculated wireValue is out of bounds, %f", static_cast<double>(wireValue));
        return;
    }
    send(wireValue);
}

void HwControlStdDisplayContinuous::setFromEncoder(int ticks) {
    currentTick_ = moveStep(currentTick_, ticks, numTicks_);
    const float position = positionOfStep(currentTick_, numTicks_);
    tvk::log::debug(kTag, "ticks = %d, currentTick = %d, tmpTick*tickScale = %f", ticks, currentTick_,
                    static_cast<double>(position));
    setFromPosition(position);
}

void HwControlStdDisplayContinuous::update(const float& value) {
    currentValue_ = value;
    currentPosition_ = scale_.positionOf(value);
    currentTick_ = stepOfPosition(currentPosition_, numTicks_);
    tvk::log::debug(kTag, "update called, value = %f, currentPosition = %f, currentTick = %d",
                    static_cast<double>(value), static_cast<double>(currentPosition_), currentTick_);
    onDisplayUpdate();
}

std::string HwControlStdDisplayContinuous::getDisplayText() const {
    return remap_.textAt(currentPosition_);
}

std::string HwControlStdDisplayContinuous::getDisplayTextMinimized() const {
    return remapMinimized_.textAt(currentPosition_);
}
