#include "math/BackgroundFFTConvolverThread.h"

#include "math/SplitConvolver.h"
#include "utility/Clock.h"

BackgroundFFTConvolverThread::BackgroundFFTConvolverThread(SplitConvolver& convolver, int cpu,
                                                           const std::string& name)
    : TarvekThread(kPriority, cpu), convolver_(convolver) {
    setName(name);
}

BackgroundFFTConvolverThread::~BackgroundFFTConvolverThread() {
    stop();
    convolver_.tailBell().ring();
    join();
}

void BackgroundFFTConvolverThread::loop() {
    tvk::Clock::current().awaitJob(convolver_.tailBell(), sleepMicroseconds_);
    convolver_.runTail();
}
