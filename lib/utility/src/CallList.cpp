#include "utility/CallList.h"

namespace tvk {

bool CallGate::enter() {
    const std::lock_guard lock(mutex_);
    if (isClosed_) return false;
    inside_.push_back(std::this_thread::get_id());
    return true;
}

void CallGate::leave() {
    // Notified under the lock: who waits may free the gate as soon as it has the lock again.
    const std::lock_guard lock(mutex_);
    inside_.erase(std::find(inside_.begin(), inside_.end(), std::this_thread::get_id()));
    left_.notify_all();
}

void CallGate::close() {
    std::unique_lock lock(mutex_);
    isClosed_ = true;
    left_.wait(lock, [this] { return isOnlyOwnThreadIn(); });
}

bool CallGate::isOnlyOwnThreadIn() const {
    return std::all_of(inside_.begin(), inside_.end(),
                       [](std::thread::id caller) { return caller == std::this_thread::get_id(); });
}

}  // namespace tvk
