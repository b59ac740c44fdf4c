#include "core/System/Runlist.h"

#include <algorithm>
#include <iterator>

#include "utility/Log.h"

void Runlist::append(IDspUnit* unit) {
    pending_->push_back(unit);
}

void Runlist::appendFront(IDspUnit* unit) {
    pending_->push_front(unit);
}

void Runlist::remove(IDspUnit* unit) {
    pending_->remove(unit);
}

void Runlist::replace(IDspUnit* oldUnit, IDspUnit* newUnit) {
    const auto found = std::find(pending_->begin(), pending_->end(), oldUnit);
    if (found == pending_->end()) {
        TVK_ERROR("doh");
        return;
    }
    *found = newUnit;
}

void Runlist::insertBefore(IDspUnit* unit, IDspUnit* location) {
    pending_->insert(std::find(pending_->begin(), pending_->end(), location), unit);
}

void Runlist::clear() {
    pending_->clear();
}

IDspUnit* Runlist::getNext(IDspUnit* unit) const {
    const auto found = std::find(pending_->begin(), pending_->end(), unit);
    if (found == pending_->end() || std::next(found) == pending_->end()) return nullptr;
    return *std::next(found);
}

void Runlist::swap() {
    pending_ = active_.exchange(pending_);
    epoch_.waitOutCurrentBlock();
    *pending_ = *active_.load();
}
