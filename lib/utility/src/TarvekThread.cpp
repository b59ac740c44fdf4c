#include "utility/TarvekThread.h"

#include <pthread.h>
#include <sched.h>

#include "utility/Clock.h"
#include "utility/Log.h"
#include "utility/scheduler.h"

namespace {

constexpr std::size_t kLongestName = 15;

}  // namespace

ITarvekThread::~ITarvekThread() {
    tvk::log::debug("ITarvekThread", "destructor called");
}

TarvekThread::TarvekThread(int priority, int cpu) : policy_(SCHED_FIFO), priority_(priority), cpu_(cpu) {}

TarvekThread::~TarvekThread() {
    TarvekThread::stop();
    TarvekThread::join();
    tvk::log::debug("TarvekThread", "destructor called");
}

void TarvekThread::setName(const std::string& name) {
    if (name.size() > kLongestName) {
        TVK_ERROR("thread name %s too long", name.c_str());
        return;
    }
    name_ = name;
}

void TarvekThread::start() {
    if (isRunning()) {
        TVK_WARN("thread already started");
        return;
    }
    TarvekThread::join();
    isRunning_.store(true, std::memory_order_relaxed);
    thread_ = std::thread(&TarvekThread::body, this);
    tvk::scheduler::setNewThreadAffinity(thread_.native_handle(), cpu_);
    tvk::scheduler::setThreadScheduling(thread_.native_handle(), policy_, priority_);
    isScheduled_.release();
    tvk::Clock::current().threadStarted();
}

void TarvekThread::stop() {
    isRunning_.store(false, std::memory_order_relaxed);
}

void TarvekThread::join() {
    if (thread_.joinable()) thread_.join();
}

void TarvekThread::body() {
    isScheduled_.acquire();
    init();
    if (!name_.empty()) pthread_setname_np(pthread_self(), name_.c_str());
    getrusage(RUSAGE_THREAD, &usageStart_);
    while (isRunning())
        loop();
    tvk::log::debug("TarvekThread", "exiting isRunning state");
    getrusage(RUSAGE_THREAD, &usageEnd_);
    logUsage();
}

// Page faults tell whether a real-time thread stayed resident.
void TarvekThread::logUsage() const {
    constexpr const char* kTag = "TarvekThreadUsage";
    tvk::log::debug(kTag, "thread: %s", name_.c_str());
    tvk::log::debug(kTag, "Hard Page Faults - Begin: %ld End: %ld Diff %ld", usageStart_.ru_majflt,
                    usageEnd_.ru_majflt, usageEnd_.ru_majflt - usageStart_.ru_majflt);
    tvk::log::debug(kTag, "Soft Page Faults - Begin: %ld End: %ld Diff %ld", usageStart_.ru_minflt,
                    usageEnd_.ru_minflt, usageEnd_.ru_minflt - usageStart_.ru_minflt);
}
