// Adds a pending-work flag to a thread that sleeps until it is poked.
//
// The loop hook calls waitUntilFlagged and works when it answers true. raise may come from the audio thread:
// it is one atomic exchange and, when the sleeper has not been poked yet, one futex wake. Work that is raised
// twice before it is taken is taken once.
#pragma once

#include <atomic>

template <typename Thread>
class Flaggable : public Thread {
public:
    using Thread::Thread;

    ~Flaggable() override {
        stop();
        this->join();
    }

    // There is work. Everything written before it is seen by the thread that takes the flag.
    void raise() {
        if (flag_.exchange(1, std::memory_order_acq_rel) == 0) flag_.notify_one();
    }

    // As the base's, and wakes the sleeper so that it sees the stop.
    void stop() override {
        Thread::stop();
        raise();
    }

    // True between raise and the moment the thread takes the work.
    bool isFlagged() const { return flag_.load(std::memory_order_acquire) != 0; }

protected:
    // Sleeps until raised, takes the flag, and answers whether there is work: false after stop.
    bool waitUntilFlagged() {
        while (flag_.exchange(0, std::memory_order_acq_rel) == 0)
            flag_.wait(0, std::memory_order_relaxed);
        return this->isRunning();
    }

private:
    std::atomic<int> flag_{0};  // an int, so that the wait is a plain futex
};
