#include "desk/soundcard/VirtualTime.h"

#include <algorithm>
#include <optional>
#include <string>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <utility>

#include "desk/soundcard/Quiescence.h"

namespace tvk::desk {

namespace {

// Longer than most turns take, shorter than anybody waits for: a look at all threads takes over then.
constexpr std::chrono::microseconds kLongestShortTurn{100};

std::string nameOfThisThread() {
    char name[16] = "";
    prctl(PR_GET_NAME, name);
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

// Who waits for the lock is at work, and looks to the kernel as if it waited: its way in is counted.
std::unique_lock<std::mutex> VirtualTime::enter() const {
    arrivals_.fetch_add(1);
    std::unique_lock lock(mutex_);
    ++admissions_;
    hasEntered_.notify_all();
    return lock;
}

VirtualTime::Nanoseconds VirtualTime::now() const {
    const std::unique_lock lock = enter();
    return now_;
}

void VirtualTime::markAudioThread() {
    if (Mark::ofThisThread().isOf(this)) return;
    Mark::ofThisThread().set(this);
    const std::unique_lock lock = enter();
    audioThread_ = static_cast<pid_t>(syscall(SYS_gettid));
}

void VirtualTime::endOfAudioThread() {
    const std::unique_lock lock = enter();
    audioThread_ = 0;
    for (Sleeper* const sleeper : sleepers_)
        sleeper->wake.notify_one();
}

void VirtualTime::rest(std::unique_lock<std::mutex>& lock) {
    // Until all who had come were in when the wait began, and nobody came during it.
    while (awaitRest_ && !isReleased_) {
        const unsigned admitted = admissions_;
        lock.unlock();
        awaitRest_();
        lock.lock();
        if (arrivals_.load() == admitted) return;
        hasEntered_.wait(lock, [this] { return arrivals_.load() == admissions_; });
    }
}

void VirtualTime::waitUntil(Nanoseconds deadline) {
    std::unique_lock lock = enter();
    bool isAnyoneAtWork = true;
    const auto restAfterWork = [&] {
        if (std::exchange(isAnyoneAtWork, false)) rest(lock);
    };
    while (now_ < deadline) {
        if (isReleased_) return passInMachineTime(deadline, lock);
        restAfterWork();
        const auto first = firstSleeper();
        const bool isSleeperNext = first != sleepers_.end() && (*first)->deadline <= deadline;
        Nanoseconds next = isSleeperNext ? (*first)->deadline : deadline;
        const bool isTickNext = tick_ && nextTick_ <= next;
        if (isTickNext) next = nextTick_;
        if (next > limit_ && !isReleased_) {
            holdAtLimit(lock);
            isAnyoneAtWork = true;
            continue;
        }
        now_ = std::max(now_, next);
        if (isTickNext) {
            isAnyoneAtWork = tick(lock);
        } else if (isSleeperNext) {
            isAnyoneAtWork = isForWork(**first, lock);
            if (isAnyoneAtWork) wake(first, lock);
        }
    }
    restAfterWork();
}

bool VirtualTime::tick(std::unique_lock<std::mutex>& lock) {
    nextTick_ += kTick;
    lock.unlock();
    const bool hasGivenWork = tick_();
    lock.lock();
    return hasGivenWork;
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
        return a->deadline != b->deadline ? a->deadline < b->deadline : a->threadName < b->threadName;
    });
}

// At its deadline. Otherwise it sleeps on.
bool VirtualTime::isForWork(Sleeper& sleeper, std::unique_lock<std::mutex>& lock) {
    if (!sleeper.hasWork) return true;
    sleeper.isAsked = true;
    lock.unlock();
    const bool hasWork = (*sleeper.hasWork)();
    lock.lock();
    sleeper.isAsked = false;
    hasAsked_.notify_all();
    if (!hasWork) sleeper.deadline += sleeper.step;
    return hasWork;
}

void VirtualTime::wake(std::list<Sleeper*>::iterator which, std::unique_lock<std::mutex>& lock) {
    Sleeper* const sleeper = *which;
    const std::size_t asleep = sleepers_.size();
    sleepers_.erase(which);
    sleeper->isAwake = true;
    ++waking_;
    sleeper->wake.notify_one();
    // Mostly the turn ends in the next sleep, of which the thread itself tells sooner than the kernel.
    do
        fellAsleep_.wait_for(lock, kLongestShortTurn,
                             [&] { return waking_ == 0 && sleepers_.size() == asleep; });
    while (waking_ != 0);
}

void VirtualTime::sleepFor(Nanoseconds duration) {
    if (duration <= Nanoseconds::zero()) return;
    if (Mark::ofThisThread().isOf(this))
        waitUntil(now() + duration);
    else
        sleep(duration, nullptr);
}

void VirtualTime::sleepUntilWork(Nanoseconds step, const Question& hasWork) {
    do
        sleep(step, &hasWork);
    while (!hasWork());
}

void VirtualTime::sleep(Nanoseconds duration, const Question* hasWork) {
    std::unique_lock lock = enter();
    Sleeper self;
    self.deadline = now_ + duration;
    self.step = duration;
    self.hasWork = hasWork;
    self.threadName = nameOfThisThread();
    sleepers_.push_back(&self);
    const auto machineDeadline = std::chrono::steady_clock::now() + duration;
    const bool wasReleased = isReleased_;
    // Ends before whoever woke it is told that it has come: from then on its work is seen.
    std::optional<Quiescence::Nap> asleep(std::in_place);
    // Not under the lock, which the audio thread takes at once.
    lock.unlock();
    fellAsleep_.notify_one();
    lock.lock();
    while (!self.isAwake && isReleased_ == wasReleased) {
        if (!isMachineTime())
            self.wake.wait(lock);
        else if (self.wake.wait_until(lock, machineDeadline) == std::cv_status::timeout && isMachineTime())
            break;
    }
    hasAsked_.wait(lock, [&self] { return !self.isAsked; });
    asleep.reset();
    if (self.isAwake)
        --waking_;
    else
        sleepers_.remove(&self);
}

void VirtualTime::hold() {
    const std::unique_lock lock = enter();
    limit_ = now_;
}

bool VirtualTime::run(Nanoseconds duration) {
    std::unique_lock lock = enter();
    changed_.wait(lock, [this] { return isHeld_ || isReleased_; });
    if (duration > Nanoseconds::zero()) {
        limit_ += duration;
        isHeld_ = false;
        changed_.notify_all();
        // The audio thread stands still before this returns: its looks need not include the caller.
        const Quiescence::Nap asleep;
        changed_.wait(lock, [this] { return isHeld_ || isReleased_; });
    }
    rest(lock);
    return !isReleased_;
}

void VirtualTime::release() {
    const std::unique_lock lock = enter();
    isReleased_ = true;
    changed_.notify_all();
    for (Sleeper* const sleeper : sleepers_)
        sleeper->wake.notify_one();
}

void VirtualTime::reset() {
    const std::unique_lock lock = enter();
    now_ = Nanoseconds::zero();
    nextTick_ = Nanoseconds::zero();
    limit_ = Nanoseconds::max();
    isReleased_ = false;
    isHeld_ = false;
}

}  // namespace tvk::desk
