#include "desk/soundcard/VirtualTime.h"

#include <algorithm>
#include <optional>
#include <string>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

#include "desk/soundcard/Quiescence.h"

namespace tvk::desk {

namespace {

std::string nameOf(pthread_t thread) {
    char name[16] = "";
    pthread_getname_np(thread, name, sizeof name);
    return name;
}

}  // namespace

// On the audio thread's own stack of thread-locals, so that its end is noticed however it ends.
class VirtualTime::Mark {
public:
    ~Mark() {
        if (time_) time_->endOfAudioThread();
    }
    void set(VirtualTime* time) { time_ = time; }
    bool isOf(const VirtualTime* time) const { return time_ == time; }

    static Mark& ofThisThread() {
        thread_local Mark mark;
        return mark;
    }

private:
    VirtualTime* time_ = nullptr;
};

// Of a sleeper, until its thread's end, which may come after the time's.
class VirtualTime::Acquaintance {
public:
    ~Acquaintance() { end(); }
    Acquaintance() = default;
    Acquaintance(const Acquaintance&) = delete;
    Acquaintance& operator=(const Acquaintance&) = delete;

    void make(const std::shared_ptr<std::atomic<std::size_t>>& sleepers) {
        if (sleepers_ == sleepers) return;
        end();
        sleepers_ = sleepers;
        ++*sleepers_;
    }

private:
    void end() {
        if (sleepers_) --*sleepers_;
    }

    std::shared_ptr<std::atomic<std::size_t>> sleepers_;
};

bool VirtualTime::areSleepersAsleep() const {
    const std::lock_guard lock(mutex_);
    return sleepers_.size() == *knownSleepers_;
}

VirtualTime::Nanoseconds VirtualTime::now() const {
    const std::lock_guard lock(mutex_);
    return now_;
}

void VirtualTime::markAudioThread() {
    if (Mark::ofThisThread().isOf(this)) return;
    Mark::ofThisThread().set(this);
    const std::lock_guard lock(mutex_);
    audioThread_ = static_cast<pid_t>(syscall(SYS_gettid));
}

void VirtualTime::endOfAudioThread() {
    const std::lock_guard lock(mutex_);
    audioThread_ = 0;
    for (Sleeper* const sleeper : sleepers_)
        sleeper->wake.notify_one();
}

void VirtualTime::rest(std::unique_lock<std::mutex>& lock) {
    if (!awaitRest_ || isReleased_) return;
    lock.unlock();
    awaitRest_();
    lock.lock();
}

void VirtualTime::waitUntil(Nanoseconds deadline) {
    std::unique_lock lock(mutex_);
    while (now_ < deadline) {
        if (isReleased_) return passInMachineTime(deadline, lock);
        rest(lock);
        const auto first = firstSleeper();
        const bool isSleeperNext = first != sleepers_.end() && (*first)->deadline <= deadline;
        Nanoseconds next = isSleeperNext ? (*first)->deadline : deadline;
        const bool isTickNext = tick_ && nextTick_ <= next;
        if (isTickNext) next = nextTick_;
        if (next > limit_ && !isReleased_) {
            holdAtLimit(lock);
            continue;
        }
        now_ = std::max(now_, next);
        if (isTickNext)
            tick(lock);
        else if (isSleeperNext)
            wake(first, lock);
    }
    rest(lock);
}

void VirtualTime::tick(std::unique_lock<std::mutex>& lock) {
    nextTick_ += kTick;
    lock.unlock();
    tick_();
    lock.lock();
}

// A card that nobody holds back would take the processor from whoever ends the run.
void VirtualTime::passInMachineTime(Nanoseconds deadline, std::unique_lock<std::mutex>& lock) {
    const Nanoseconds left = deadline - now_;
    lock.unlock();
    std::this_thread::sleep_for(left);
    lock.lock();
    now_ = std::max(now_, deadline);
}

void VirtualTime::holdAtLimit(std::unique_lock<std::mutex>& lock) {
    now_ = std::max(now_, limit_);
    isHeld_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return !isHeld_ || isReleased_; });
}

std::list<VirtualTime::Sleeper*>::iterator VirtualTime::firstSleeper() {
    return std::min_element(sleepers_.begin(), sleepers_.end(), [](const Sleeper* a, const Sleeper* b) {
        return a->deadline != b->deadline ? a->deadline < b->deadline : nameOf(a->thread) < nameOf(b->thread);
    });
}

void VirtualTime::wake(std::list<Sleeper*>::iterator which, std::unique_lock<std::mutex>& lock) {
    Sleeper* const sleeper = *which;
    sleepers_.erase(which);
    sleeper->isAwake = true;
    ++waking_;
    sleeper->wake.notify_one();
    changed_.wait(lock, [this] { return waking_ == 0; });
}

void VirtualTime::sleepFor(Nanoseconds duration) {
    if (duration <= Nanoseconds::zero()) return;
    if (Mark::ofThisThread().isOf(this))
        waitUntil(now() + duration);
    else
        sleep(duration);
}

void VirtualTime::sleep(Nanoseconds duration) {
    thread_local Acquaintance acquaintance;
    std::unique_lock lock(mutex_);
    acquaintance.make(knownSleepers_);
    Sleeper self;
    self.deadline = now_ + duration;
    self.thread = pthread_self();
    sleepers_.push_back(&self);
    const auto machineDeadline = std::chrono::steady_clock::now() + duration;
    const bool wasReleased = isReleased_;
    // Ends before whoever woke it is told that it has come: from then on its work is seen.
    std::optional<Quiescence::Nap> asleep(std::in_place);
    while (!self.isAwake && isReleased_ == wasReleased) {
        if (!isMachineTime())
            self.wake.wait(lock);
        else if (self.wake.wait_until(lock, machineDeadline) == std::cv_status::timeout && isMachineTime())
            break;
    }
    asleep.reset();
    if (self.isAwake) {
        --waking_;
        changed_.notify_all();
    } else {
        sleepers_.remove(&self);
    }
}

void VirtualTime::hold() {
    const std::lock_guard lock(mutex_);
    limit_ = now_;
}

bool VirtualTime::run(Nanoseconds duration) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return isHeld_ || isReleased_; });
    if (duration > Nanoseconds::zero()) {
        limit_ += duration;
        isHeld_ = false;
        changed_.notify_all();
        changed_.wait(lock, [this] { return isHeld_ || isReleased_; });
    }
    rest(lock);
    return !isReleased_;
}

void VirtualTime::release() {
    const std::lock_guard lock(mutex_);
    isReleased_ = true;
    changed_.notify_all();
    for (Sleeper* const sleeper : sleepers_)
        sleeper->wake.notify_one();
}

void VirtualTime::reset() {
    const std::lock_guard lock(mutex_);
    now_ = Nanoseconds::zero();
    nextTick_ = Nanoseconds::zero();
    limit_ = Nanoseconds::max();
    isReleased_ = false;
    isHeld_ = false;
}

}  // namespace tvk::desk
