// A long-lived thread with an init hook and a loop hook, under SCHED_FIFO on a fixed processor.
//
// Life: start runs init once and then loop until stop is seen; join waits for the end. A class that derives
// from it stops and joins in its own destructor, before its members go: by the time ~TarvekThread runs, the
// hooks are no longer there to be called. Threads start last in their owner's constructor.
//
// start, stop and join belong to the owner's thread; init and loop run on the new one, which waits until
// start has set processor and priority.
#pragma once

#include <atomic>
#include <semaphore>
#include <string>
#include <sys/resource.h>
#include <thread>

class ITarvekThread {
public:
    virtual ~ITarvekThread();
    virtual void start() = 0;
    virtual void stop() = 0;
    virtual void join() = 0;
};

class TarvekThread : public ITarvekThread {
public:
    // priority: 1 to 99, limited to what the policy takes. cpu: processor, counted from 0. Without the right
    // or the processor the thread runs on as it is, with a warning.
    TarvekThread(int priority, int cpu);
    ~TarvekThread() override;
    TarvekThread(const TarvekThread&) = delete;
    TarvekThread& operator=(const TarvekThread&) = delete;

    // At most 15 characters; a longer one is an error in the log and the name stays as it was. Takes effect
    // when called before start or from init.
    void setName(const std::string& name);

    // A started thread only warns.
    void start() override;

    // The loop ends at its next test; does not wait for it.
    void stop() override;

    // Returns at once when there is nothing to wait for.
    void join() override;

protected:
    // The hooks. loop is called again and again and paces itself: it blocks or sleeps.
    virtual void init() = 0;
    virtual void loop() = 0;

    bool isRunning() const { return isRunning_.load(std::memory_order_relaxed); }

private:
    void body();
    void logUsage() const;

    const int policy_;
    const int priority_;
    const int cpu_;
    rusage usageStart_{};
    rusage usageEnd_{};
    std::thread thread_;
    std::string name_;
    std::atomic<bool> isRunning_{false};
    std::binary_semaphore isScheduled_{0};
};
