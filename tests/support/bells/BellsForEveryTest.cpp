// Linked into a test program, lets the audio path's helpers sleep in every test until there is a job for
// them.
//
// In the machine's time a helper looks for one every 23 us, a sample of 44.1 kHz. Where a hypervisor sets the
// timers, or an emulator carries out the calls, looking takes more of the processor than the jobs. A test
// that brings a clock of its own has that one instead, until its clock ends.
#include <chrono>
#include <gtest/gtest.h>
#include <poll.h>

#include "utility/Clock.h"
#include "utility/JobBell.h"

namespace {

// The machine's time but for helpers.
class BellClock : public tvk::Clock {
public:
    std::chrono::nanoseconds now() override { return std::chrono::steady_clock::now().time_since_epoch(); }
    void sleepFor(std::chrono::nanoseconds duration) override { nap(duration); }
    void awaitJob(tvk::JobBell& bell, std::chrono::nanoseconds) override {
        bell.await(std::chrono::seconds(1));
    }
    int poll(pollfd* descriptors, nfds_t count, std::chrono::milliseconds timeout) override {
        return ::poll(descriptors, count, timeout.count() < 0 ? -1 : static_cast<int>(timeout.count()));
    }
};

class BellsForEveryTest : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override { tvk::Clock::install(&clock_); }
    void OnTestEnd(const testing::TestInfo&) override { tvk::Clock::install(nullptr); }

    BellClock clock_;
};

[[maybe_unused]] const bool isListening = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new BellsForEveryTest);
    return true;
}();

}  // namespace
