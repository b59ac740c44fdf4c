// Mutexes for threads that share a processor with the audio: who holds one runs at the priority of the most
// urgent thread that waits for it, so that a thread between the two cannot keep the waiter off.
//
// For std::lock_guard and std::unique_lock. Throws std::system_error where std::mutex does. Source: Sha,
// Rajkumar and Lehoczky 1990, the basic priority inheritance protocol; pthread_mutexattr_setprotocol(3).
#pragma once

#include <pthread.h>

namespace tvk {

class PriorityMutex {
public:
    PriorityMutex() : PriorityMutex(PTHREAD_MUTEX_ERRORCHECK) {}
    ~PriorityMutex() { pthread_mutex_destroy(&mutex_); }
    PriorityMutex(const PriorityMutex&) = delete;
    PriorityMutex& operator=(const PriorityMutex&) = delete;

    void lock();
    bool try_lock();
    void unlock() { pthread_mutex_unlock(&mutex_); }

protected:
    // type: PTHREAD_MUTEX_ERRORCHECK or PTHREAD_MUTEX_RECURSIVE.
    explicit PriorityMutex(int type);

private:
    pthread_mutex_t mutex_;
};

// May be locked again by the thread that holds it; it is free after as many unlocks.
class RecursivePriorityMutex : public PriorityMutex {
public:
    RecursivePriorityMutex() : PriorityMutex(PTHREAD_MUTEX_RECURSIVE) {}
};

}  // namespace tvk
