// Name, policy, priority and processor for plain standard threads and for the calling thread.
//
// No failure is fatal: it is in the log, and the thread goes on as it is.
#pragma once

#include <cstddef>
#include <functional>
#include <pthread.h>
#include <string>
#include <thread>

namespace tvk::ThreadSched {

// Policy codes: 1 SCHED_FIFO, 2 SCHED_RR, 3 SCHED_BATCH, 5 SCHED_IDLE; 6 (SCHED_DEADLINE) is refused with a
// warning, and it and every other code stand for SCHED_OTHER. The name has 1 to 15 characters; a bad one is
// an error in the log and is left unset, and the scheduling is set all the same.
void setNameAndScheduling(std::thread& thread, const std::string& name, int policyCode, int priority);
void setNameAndScheduling(const std::string& name, int policyCode, int priority);

// Starts a thread and gives it all of that before its body runs.
std::thread start(std::function<void()> body, const std::string& name, int policyCode, int priority, int cpu);

// Binds the thread to one processor, counted from 0; 1024 and more name none.
void setAffinity(std::thread& thread, int cpu);
void setAffinity(int cpu);

// The policy behind a code.
int policyOfCode(int policyCode);

// Stack size of every thread that is started from now on, in bytes. With all memory locked, the usual 8 MiB
// a thread would be resident for good.
void setDefaultStackSize(std::size_t bytes);

}  // namespace tvk::ThreadSched
