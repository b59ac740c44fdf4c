#include "proj/models/SaveThread.h"

#include <utility>

#include "utility/ThreadSched.h"

namespace tvk {

namespace {

constexpr int kFifo = 1;
constexpr int kPriority = 45;
constexpr int kCpu = 0;

}  // namespace

SaveThread::SaveThread(const std::string& name, std::function<bool()> write)
    : write_(std::move(write)),
      thread_(ThreadSched::start([this] { loop(); }, name, kFifo, kPriority, kCpu)) {}

SaveThread::~SaveThread() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    saveRequested_.notify_one();
    thread_.join();
}

void SaveThread::request() {
    {
        const std::lock_guard lock(mutex_);
        ++requested_;
    }
    saveRequested_.notify_one();
}

bool SaveThread::requestAndWait() {
    std::unique_lock lock(mutex_);
    const std::uint64_t own = ++requested_;
    saveRequested_.notify_one();
    saveDone_.wait(lock, [this, own] { return done_ >= own; });
    return isSaved_;
}

void SaveThread::finishPending() {
    std::unique_lock lock(mutex_);
    const std::uint64_t last = requested_;
    saveDone_.wait(lock, [this, last] { return done_ >= last; });
}

void SaveThread::loop() {
    std::unique_lock lock(mutex_);
    for (;;) {
        saveRequested_.wait(lock, [this] { return requested_ != done_ || isEnding_; });
        if (requested_ == done_) return;
        const std::uint64_t covered = requested_;
        lock.unlock();
        const bool isSaved = write_();
        lock.lock();
        isSaved_ = isSaved;
        done_ = covered;
        saveDone_.notify_all();
    }
}

}  // namespace tvk
