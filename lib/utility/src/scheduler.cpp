#include "utility/scheduler.h"

#include <cerrno>
#include <sched.h>

#include "utility/Log.h"

namespace tvk::scheduler {

namespace {

constexpr int kMaxCpus = 1024;  // bits of a cpu_set_t
constexpr const char* kTag = "ThreadSched";

void warnSchedulingError(const char* call, int error, unsigned id) {
    TVK_WARN("%s error:", call);
    switch (error) {
        case ESRCH:
            TVK_WARN("No thread with the ID %u could be found.", id);
            break;
        case EINVAL:
            TVK_WARN(
                "policy is not a recognized policy, or param does not make"
                "sense for the policy.");
            break;
        case EPERM:
            TVK_WARN(
                "The caller does not have appropriate privileges to set the"
                "specified scheduling policy and parameters.");
            break;
        case ENOTSUP:
            TVK_WARN(
                "attempt was made to set the policy or scheduling parameters"
                "to an unsupported value");
            break;
        default:
            TVK_WARN("unknown error");
    }
}

void warnAffinityError(int error) {
    TVK_WARN("pthread_setaffinity_np error:");
    switch (error) {
        case ESRCH:
            TVK_WARN("No thread with the given ID could be found.");
            break;
        case EINVAL:
            TVK_WARN(
                "The affinity bit mask contains no processors that are both present and accessible by the "
                "thread.");
            break;
        case EFAULT:
            TVK_WARN("A supplied memory address was invalid.");
            break;
        default:
            TVK_WARN("unknown error");
    }
}

bool isRealTime(int policy) {
    return policy == SCHED_FIFO || policy == SCHED_RR;
}

}  // namespace

int clampPriority(int policy, int priority) {
    const int highest = sched_get_priority_max(policy);
    const int lowest = sched_get_priority_min(policy);
    if (priority > highest) {
        log::debug(kTag, "Invalid priority value (%d), setting to max value.", priority);
        return highest;
    }
    if (priority < lowest) {
        log::debug(kTag, "Invalid priority value (%d), setting to min value.", priority);
        return lowest;
    }
    return priority;
}

bool setThreadScheduling(pthread_t thread, int policy, int priority) {
    sched_param parameters{};
    parameters.sched_priority = clampPriority(policy, priority);
    const bool isRefused = isRealTime(policy) && !kMayBeRealTime;
    const int error = isRefused ? EPERM : pthread_setschedparam(thread, policy, &parameters);
    if (error != 0) {
        warnSchedulingError("pthread_setschedparam", error, static_cast<unsigned>(thread));
        return false;
    }
    log::debug(kTag, "Thread set with priority %i...", parameters.sched_priority);
    return true;
}

bool setThreadAffinity(pthread_t thread, int cpu) {
    cpu_set_t set;
    CPU_ZERO(&set);
    if (cpu >= 0 && cpu < kMaxCpus) CPU_SET(static_cast<size_t>(cpu), &set);
    const int error = pthread_setaffinity_np(thread, sizeof set, &set);
    if (error != 0) {
        warnAffinityError(error);
        return false;
    }
    log::debug(kTag, "Thread %i affinity set to CPU %i", static_cast<int>(thread), cpu);
    return true;
}

void setNewThreadAffinity(pthread_t thread, int cpu) {
    if (setThreadAffinity(thread, cpu)) return;
    cpu_set_t all;
    CPU_ZERO(&all);
    for (int each = 0; each < kMaxCpus; ++each)
        CPU_SET(static_cast<std::size_t>(each), &all);
    pthread_setaffinity_np(thread, sizeof all, &all);
}

bool setProcessScheduling(pid_t process, int policy, int priority) {
    sched_param parameters{};
    parameters.sched_priority = clampPriority(policy, priority);
    if (sched_setscheduler(process, policy, &parameters) == -1) {
        warnSchedulingError("sched_setscheduler", errno, static_cast<unsigned>(process));
        return false;
    }
    log::debug(kTag, "Process %d set with priority %i...", static_cast<int>(process),
               parameters.sched_priority);
    return true;
}

}  // namespace tvk::scheduler
