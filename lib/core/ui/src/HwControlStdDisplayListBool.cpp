#include "core/ui/HwControlStdDisplayListBool.h"

#include "utility/Log.h"

namespace {

constexpr const char* kTag = "HwControlStdDisplayListBool";

}  // namespace

HwControlStdDisplayListBool::HwControlStdDisplayListBool(DspArchive& archive)
    : HwControlStdDisplay<bool>(archive),
      selection_(
          archive, {"false", "true"},
          {"remap object missing listItems object", "remapMinimized object missing listItems object"}) {
    selection_.resize(2);
}

void HwControlStdDisplayListBool::setFromBool(bool on) {
    send(on);
    tvk::log::debug(kTag, "Received bool control, current item: %s", selection_.item().c_str());
}

void HwControlStdDisplayListBool::setFromPosition(float position) {
    tvk::log::debug(kTag, "Received position control: %f", static_cast<double>(position));
    send(selection_.indexOfPosition(position) == 1);
    tvk::log::debug(kTag, "Current item: %s", selection_.item().c_str());
}

void HwControlStdDisplayListBool::setFromString(const std::string& value) {
    tvk::log::debug(kTag, "Received list item control: %s", value.c_str());
    const int index = selection_.find(value);
    if (index >= 0) {
        send(index == 1);
    } else if (value == "true" || value == "false") {
        send(value == "true");
    }
    tvk::log::debug(kTag, "Current index: %d", selection_.index());
}

void HwControlStdDisplayListBool::setFromEncoder(int ticks) {
    tvk::log::debug(kTag, "Received incremental encoder control: %d ticks", ticks);
    send(selection_.indexOfEncoder(ticks) == 1);
}

void HwControlStdDisplayListBool::update(const bool& value) {
    selection_.choose(value ? 1 : 0);
    tvk::log::debug(kTag, "List item updated: %s", selection_.item().c_str());
    onDisplayUpdate();
}
