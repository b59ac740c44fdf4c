// Policy, priority and processor of a thread or of the process, with a log line for every outcome.
//
// Nothing here throws or stops: without the right to real-time scheduling, or on a machine with fewer
// processors, the caller runs on with the scheduling it has and a warning says why. Any control thread.
// Calls: pthread_setschedparam(3), pthread_setaffinity_np(3), sched_setscheduler(2).
#pragma once

#include <pthread.h>
#include <sys/types.h>

namespace tvk::scheduler {

// Whether this build asks for real-time priorities at all. A sanitizer's runtime spins for locks of its own,
// and a real-time thread that has preempted the holder would do so for ever.
#ifdef TARVEK_SANITIZED
inline constexpr bool kMayBeRealTime = false;
#else
inline constexpr bool kMayBeRealTime = true;
#endif

// The priority limited to what the policy (SCHED_FIFO and the like) takes; a debug line tells of a change.
int clampPriority(int policy, int priority);

// True when the kernel took it. The priority is limited first. A build without real-time priorities refuses
// them as a machine does that gives no right to them.
bool setThreadScheduling(pthread_t thread, int policy, int priority);

// Binds the thread to one processor, counted from 0. A number of 1024 or more names none, and an empty set
// is refused by the kernel.
bool setThreadAffinity(pthread_t thread, int cpu);

// The same for a thread that has just been started. Where the processor does not exist, the thread may run on
// every other: it would else be bound to the one of its starter, and there stand in that one's way.
void setNewThreadAffinity(pthread_t thread, int cpu);

// The scheduling of a whole process, 0 for the calling one.
bool setProcessScheduling(pid_t process, int policy, int priority);

}  // namespace tvk::scheduler
