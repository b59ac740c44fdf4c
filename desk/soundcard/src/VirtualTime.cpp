#include "desk/soundcard/VirtualTime.h"

#include <algorithm>
#include <thread>

namespace tvk::desk {

namespace {

thread_local VirtualTime* drivenClock = nullptr;
thread_local bool isAudioThread = false;

}  // namespace

VirtualTime::Driver::Driver(VirtualTime& time) : time_(&time) {
    const std::lock_guard lock(time.mutex_);
    ++time.awakeDrivers_;
    drivenClock = &time;
}

void VirtualTime::Driver::release() {
    if (!time_) return;
    {
        const std::lock_guard lock(time_->mutex_);
        --time_->awakeDrivers_;
    }
    time_->mayMove_.notify_all();
    drivenClock = nullptr;
    time_ = nullptr;
}

VirtualTime::Nanoseconds VirtualTime::now() const {
    const std::lock_guard lock(mutex_);
    return now_;
}

void VirtualTime::markAudioThread() {
    isAudioThread = true;
}

bool VirtualTime::callerIsDriver() const {
    return drivenClock == this;
}

void VirtualTime::waitUntil(Nanoseconds deadline) {
    std::unique_lock lock(mutex_);
    const int self = callerIsDriver() ? 1 : 0;
    while (now_ < deadline) {
        mayMove_.wait(lock, [&] { return awakeDrivers_ == self; });
        const auto first =
            std::min_element(sleepers_.begin(), sleepers_.end(),
                             [](const auto* a, const auto* b) { return a->deadline < b->deadline; });
        if (first == sleepers_.end() || (*first)->deadline > deadline) {
            now_ = std::max(now_, deadline);
            break;
        }
        Sleeper* const sleeper = *first;
        sleepers_.erase(first);
        now_ = std::max(now_, sleeper->deadline);
        ++awakeDrivers_;
        sleeper->isAwake = true;
        sleeper->wake.notify_one();
    }
    // A driver woken at the very deadline does its part before the audio thread goes on.
    mayMove_.wait(lock, [&] { return awakeDrivers_ == self; });
}

void VirtualTime::sleepFor(Nanoseconds duration) {
    if (duration <= Nanoseconds::zero()) return;
    if (callerIsDriver())
        sleepAsDriver(duration);
    else if (isAudioThread)
        waitUntil(now() + duration);
    else
        std::this_thread::sleep_for(duration);
}

void VirtualTime::sleepAsDriver(Nanoseconds duration) {
    std::unique_lock lock(mutex_);
    Sleeper self;
    self.deadline = now_ + duration;
    sleepers_.push_back(&self);
    --awakeDrivers_;
    mayMove_.notify_all();
    self.wake.wait(lock, [&] { return self.isAwake; });
}

void VirtualTime::reset() {
    const std::lock_guard lock(mutex_);
    now_ = Nanoseconds::zero();
}

}  // namespace tvk::desk
