// The process-wide count of jobs handed to the helper threads of the audio path: tank blocks, tails.
//
// The live process never looks at it. Whoever makes time itself does: the renderer waits until all is idle
// before it computes the next block, a virtual clock holds still while jobs are pending, so both give what
// the machine in real time gives.
#pragma once

namespace tvk {

class BackgroundJobs {
public:
    // A job is handed over, which its helper cannot see yet; one relaxed atomic step, any thread, the audio
    // thread too.
    static void begin();

    // `jobs` jobs are done: called by the helper after its results can be seen.
    static void end(int jobs = 1);

    // Jobs handed over and not done.
    static int pending();

    // Returns when nothing is pending. Whoever makes time.
    static void waitUntilIdle();
};

}  // namespace tvk
