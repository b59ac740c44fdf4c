#include "algorithms/amp/CorvinArvel65ReverbThread.h"

#include <cmath>

#include "algorithms/reverb/MeasuredSpringTank.h"
#include "utility/Clock.h"
#include "utility/HelperStall.h"
#include "utility/JobTimer.h"
#include "utility/Log.h"
#include "utility/RealtimeThread.h"

namespace {

constexpr const char* kTag = "CorvinArvel65ReverbThread";

}  // namespace

CorvinArvel65ReverbThread::CorvinArvel65ReverbThread(MeasuredSpringTank& reverb, ReverbHandover& handover,
                                                     int blockLength, float sampleRate)
    : TarvekThread(kPriority, kCpu),
      reverb_(reverb),
      handover_(handover),
      blockPeriod_(std::llround(1e9 * blockLength / static_cast<double>(sampleRate))),
      sleepMicroseconds_(static_cast<int>(1000000.0f / sampleRate)) {
    tvk::log::debug(kTag, "constructor called");
    setName(kName);
    start();
}

CorvinArvel65ReverbThread::~CorvinArvel65ReverbThread() {
    stop();
    handover_.bell().ring();
    join();
    tvk::log::debug(kTag, "destructor called");
}

void CorvinArvel65ReverbThread::loop() {
    tvk::Clock::current().awaitJob(handover_.bell(), sleepMicroseconds_);
    const tvk::RealtimeThreadScope realtime;
    while (handover_.takeRequest()) {
        tvk::HelperStall::pass(kName);
        {
            const tvk::JobTimer timer(kName, blockPeriod_);
            reverb_.process(handover_.send(), handover_.returned());
        }
        handover_.finish();
    }
}
