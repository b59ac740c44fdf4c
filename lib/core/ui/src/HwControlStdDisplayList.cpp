#include "core/ui/HwControlStdDisplayList.h"

#include "utility/Log.h"

namespace {

constexpr const char* kTag = "HwControlStdDisplayList";

}  // namespace

HwControlStdDisplayList::HwControlStdDisplayList(DspArchive& archive)
    : HwControlStdDisplay<std::string>(archive),
      selection_(archive, {}, {"remap found without listItems", "remapMinimized found without listItems"}) {
    if (selection_.size() == 0) TVK_WARN("missing listItems object");
}

void HwControlStdDisplayList::sendIndex(int index) {
    if (selection_.size() == 0) return;
    selection_.choose(index);
    // A copy: the parameter answers with update while it is in use.
    const std::string item = selection_.item();
    send(item);
}

void HwControlStdDisplayList::setFromBool(bool on) {
    sendIndex(selection_.indexOfBool(on));
    tvk::log::debug(kTag, "Received bool control, current item: %s", selection_.item().c_str());
}

void HwControlStdDisplayList::setFromPosition(float position) {
    tvk::log::debug(kTag, "Received position control: %f", static_cast<double>(position));
    sendIndex(selection_.indexOfPosition(position));
    tvk::log::debug(kTag, "Current item: %s", selection_.item().c_str());
}

void HwControlStdDisplayList::setFromString(const std::string& value) {
    tvk::log::debug(kTag, "Received list item control: %s", value.c_str());
    const int index = selection_.find(value);
    if (index >= 0) sendIndex(index);
    tvk::log::debug(kTag, "Current index: %d", selection_.index());
}

void HwControlStdDisplayList::setFromEncoder(int ticks) {
    tvk::log::debug(kTag, "Received incremental encoder control: %d ticks", ticks);
    sendIndex(selection_.indexOfEncoder(ticks));
}

void HwControlStdDisplayList::update(const std::string& value) {
    selection_.choose(selection_.find(value));
    tvk::log::debug(kTag, "List item updated: %s", value.c_str());
    onDisplayUpdate();
}
