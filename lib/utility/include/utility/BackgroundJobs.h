// The process-wide count of jobs handed to the helper threads of the audio path: tank blocks, tails.
//
// The live process never looks at it. Whoever makes time itself does: the renderer waits until all is idle
// before it computes the next block, a virtual clock holds still while jobs are pending, so both give what
// the machine in real time gives.
#pragma once

#include <chrono>

namespace tvk {

class BackgroundJobs {
public:
    // A job is about to be handed over; one relaxed atomic step, any thread, the audio thread too.
    static void begin();

    // It can be seen by its helper now: wakes those in awaitHandOver, by a call to the kernel. In the live
    // process nobody waits there, and this is two atomic steps. Any thread, the audio thread too.
    static void handedOver();

    // `jobs` jobs are done: called by the helper after its results can be seen.
    static void end(int jobs = 1);

    // Jobs handed over and not done.
    static int pending();

    // Returns when nothing is pending. Whoever makes time.
    static void waitUntilIdle();

    // Returns when a job has been handed over since this thread's last call, or after `atMost` of the
    // machine's time; the first call returns at once. For helpers, in place of looking again and again.
    static void awaitHandOver(std::chrono::nanoseconds atMost);
};

}  // namespace tvk
