#include "utility/ThreadSched.h"

#include <cstring>
#include <latch>
#include <memory>
#include <sched.h>
#include <utility>

#include "utility/Clock.h"
#include "utility/Log.h"
#include "utility/scheduler.h"

namespace tvk::ThreadSched {

namespace {

constexpr std::size_t kLongestName = 15;

void applyNameAndScheduling(pthread_t thread, const std::string& name, int policyCode, int priority) {
    if (name.empty())
        TVK_ERROR("Thread must have a non-empty name.");
    else if (name.size() > kLongestName)
        TVK_ERROR("Thread name too long: %s.", name.c_str());
    else
        pthread_setname_np(thread, name.c_str());
    scheduler::setThreadScheduling(thread, policyOfCode(policyCode), priority);
}

}  // namespace

int policyOfCode(int policyCode) {
    switch (policyCode) {
        case 1:
            return SCHED_FIFO;
        case 2:
            return SCHED_RR;
        case 3:
            return SCHED_BATCH;
        case 5:
            return SCHED_IDLE;
        case 6:
            TVK_WARN("SCHED_DEADLINE not supported.");
            return SCHED_OTHER;
        default:
            return SCHED_OTHER;
    }
}

void setNameAndScheduling(std::thread& thread, const std::string& name, int policyCode, int priority) {
    applyNameAndScheduling(thread.native_handle(), name, policyCode, priority);
}

void setNameAndScheduling(const std::string& name, int policyCode, int priority) {
    applyNameAndScheduling(pthread_self(), name, policyCode, priority);
}

std::thread start(std::function<void()> body, const std::string& name, int policyCode, int priority,
                  int cpu) {
    const auto scheduled = std::make_shared<std::latch>(1);
    std::thread thread([scheduled, body = std::move(body)] {
        scheduled->wait();
        body();
    });
    scheduler::setNewThreadAffinity(thread.native_handle(), cpu);
    setNameAndScheduling(thread, name, policyCode, priority);
    scheduled->count_down();
    Clock::current().threadStarted();
    return thread;
}

void setAffinity(std::thread& thread, int cpu) {
    scheduler::setThreadAffinity(thread.native_handle(), cpu);
}

void setAffinity(int cpu) {
    scheduler::setThreadAffinity(pthread_self(), cpu);
}

void setDefaultStackSize(std::size_t bytes) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, bytes);
    const int error = pthread_setattr_default_np(&attributes);
    if (error != 0) TVK_WARN("stack size of %zu bytes refused: %s", bytes, std::strerror(error));
    pthread_attr_destroy(&attributes);
}

}  // namespace tvk::ThreadSched
