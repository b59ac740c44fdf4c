// The bell of a helper thread's door: rung by whoever has left a job there, and by whoever wants the thread
// to end.
//
// The live process's helpers look for jobs at their own pace and never wait at it. Where one clock makes the
// time of all (Clock::awaitJob), they sleep until it rings.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

namespace tvk {

class JobBell {
public:
    // There is something to do, and the helper can see it. Any thread, the audio thread too: two atomic
    // steps, and a call to the kernel if the helper waits.
    void ring();

    // Returns when the bell has rung since the last call, or after `atMost` of the machine's time. The
    // helper.
    void await(std::chrono::nanoseconds atMost);

private:
    std::atomic<std::uint32_t> rung_{0};  // how often, modulo its range
    std::atomic<bool> isAwaited_{false};
    std::uint32_t heard_ = 0;  // the helper's
};

}  // namespace tvk
