#include "core/ui/ListSelection.h"

#include <algorithm>

#include "KnobPosition.h"
#include "utility/Log.h"

namespace {

const std::string kEmpty = "empty";

std::vector<std::string> readItems(DspArchive& archive) {
    std::vector<std::string> items;
    if (!archive.enterObject("listItems")) return items;
    for (int i = 0; i < archive.getArraySize(); ++i) {
        items.push_back(kEmpty);
        archive.getArrayItem(i, items.back());
    }
    archive.leaveObject();
    return items;
}

std::vector<std::string> readRemap(DspArchive& archive, const std::string& key,
                                   const std::vector<std::string>& fallback,
                                   const char* messageWithoutItems) {
    if (!archive.enterObject(key)) return fallback;
    std::vector<std::string> items = readItems(archive);
    archive.leaveObject();
    if (!items.empty()) return items;
    TVK_WARN("%s", messageWithoutItems);
    return fallback;
}

}  // namespace

ListSelection::ListSelection(DspArchive& archive, const std::vector<std::string>& fallback,
                             const Messages& messages)
    : items_(readItems(archive)) {
    if (items_.empty()) items_ = fallback;
    remap_ = readRemap(archive, "remap", items_, messages.remapWithoutItems);
    remapMinimized_ = readRemap(archive, "remapMinimized", remap_, messages.remapMinimizedWithoutItems);
}

void ListSelection::resize(int count) {
    items_.resize(static_cast<std::size_t>(count), kEmpty);
}

const std::string& ListSelection::item() const {
    return items_.empty() ? kEmpty : items_[static_cast<std::size_t>(index_)];
}

int ListSelection::find(const std::string& item) const {
    const auto found = std::find(items_.begin(), items_.end(), item);
    return found == items_.end() ? -1 : static_cast<int>(found - items_.begin());
}

int ListSelection::indexOfPosition(float position) const {
    return stepOfPosition(position, size());
}
int ListSelection::indexOfEncoder(int ticks) const {
    return moveStep(index_, ticks, size());
}
int ListSelection::indexOfBool(bool on) const {
    return on ? std::max(size(), 1) - 1 : 0;
}

void ListSelection::choose(int index) {
    isKnown_ = index >= 0 && index < size();
    if (isKnown_) index_ = index;
}

float ListSelection::position() const {
    return positionOfStep(index_, size());
}
std::string ListSelection::shown() const {
    return textAt(remap_);
}
std::string ListSelection::shownMinimized() const {
    return textAt(remapMinimized_);
}

std::string ListSelection::textAt(const std::vector<std::string>& texts) const {
    const auto index = static_cast<std::size_t>(index_);
    return isKnown_ && index < texts.size() ? texts[index] : kEmpty;
}
