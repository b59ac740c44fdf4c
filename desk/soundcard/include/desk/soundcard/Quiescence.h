// Are all other threads of this process waiting: for a clock, for a lock, or for data that has not come?
//
// The kernel is asked: /proc/self/task/*/syscall names the call that a thread is blocked in. A thread that
// runs, wants to run, or is blocked in anything else (a disk, say) is at work. So is one that has been woken
// while its processor has not heard of it: it looks blocked there, and its state in .../stat tells. None may
// have fallen asleep during the look, lest one thread wakes another behind its back and falls asleep before
// it.
//
// Linux from 2.6.27 on, with CONFIG_HAVE_ARCH_TRACEHOOK, as all of Debian's kernels have it.
#pragma once

#include <optional>
#include <sys/types.h>
#include <vector>

namespace tvk::desk {

class Quiescence {
public:
    // While one exists, its thread counts as waiting, also when its sleep has ended and it has not come to
    // run yet: for threads that look for work all the time and whose work is counted otherwise.
    class Nap {
    public:
        Nap();
        ~Nap();
        Nap(const Nap&) = delete;
        Nap& operator=(const Nap&) = delete;
    };

    Quiescence();
    ~Quiescence();
    Quiescence(const Quiescence&) = delete;
    Quiescence& operator=(const Quiescence&) = delete;

    // From now on threads that await others are not asked about; the caller is not in any case. Any thread.
    void leaveOutWhoAwaits() { leavesOutWhoAwaits_ = true; }

    // From now on the threads that are looked at share the processor that the caller is on now, whatever they
    // were bound to. Those that take turns lose nothing by it: a hand-over is shorter than between two
    // processors, and nobody is woken unseen. A thread of real-time priority that awaits the others is below
    // all of them from then on, so that it mostly finds them at rest.
    void shareProcessor();

    // The processor of a thread has been chosen: it is to share the common one from the next look on. Any
    // thread.
    static void threadBound();

    // Looks until all are at rest. One thread at a time. Throws std::runtime_error where the kernel does not
    // tell.
    void await();

    // One look. As await.
    bool areAtRest();

private:
    static constexpr int kOwnProcessors = -1;

    struct Task {
        pid_t id = 0;
        int call = -1;   // its file "syscall"
        int state = -1;  // its file "stat"
        int turns = -1;  // its file "schedstat", where the kernel has it
        bool isRealtime = false;
        std::optional<long> turnsAtRest{};  // how many it had had when it was last seen waiting
    };
    enum class State { Waiting, AtWork, Gone };

    bool isUpToDate() const;
    unsigned long linksOfTasks() const;
    void listTasks();
    void share();
    void goBelowOthers();
    static void closeFiles(const Task& task);
    void closeAll();
    bool allWait();
    void listTask(pid_t id);
    State stateOf(Task& task) const;
    State stateByFiles(const Task& task) const;
    static State stateByCall(const Task& task);
    static bool isAsleep(const Task& task);
    static std::optional<long> turnsOf(const Task& task);

    const int folder_;  // /proc/self/task
    std::vector<Task> tasks_;
    unsigned long links_ = 0;  // of the folder, two more than there are threads
    unsigned bindings_ = 0;    // threadBound's calls that have been seen
    int processor_ = kOwnProcessors;
    bool areSharing_ = false;
    pid_t below_ = 0;       // the thread that has gone below all others
    bool isBelow_ = false;  // it is the one that awaits
    bool leavesOutWhoAwaits_ = false;
};

}  // namespace tvk::desk
