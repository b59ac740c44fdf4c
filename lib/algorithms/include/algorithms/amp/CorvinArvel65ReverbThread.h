// The thread "AudRvbFrontThrd" of an amp's spring tank: looks for a block about once a sample and runs it.
//
// The tank's direct convolution does not fit the audio thread's share of a period; here it has a period of
// its own.
#pragma once

#include <chrono>

#include "algorithms/amp/ReverbHandover.h"
#include "utility/TarvekThread.h"

class MeasuredSpringTank;

class CorvinArvel65ReverbThread : public TarvekThread {
public:
    static constexpr const char* kName = "AudRvbFrontThrd";
    static constexpr int kPriority = 49;
    static constexpr int kCpu = 2;

    // Starts here. Tank and hand-over outlive the thread. blockLength: samples of a block at sampleRate (Hz).
    CorvinArvel65ReverbThread(MeasuredSpringTank& reverb, ReverbHandover& handover, int blockLength,
                              float sampleRate);
    ~CorvinArvel65ReverbThread() override;

protected:
    void init() override {}
    void loop() override;

private:
    MeasuredSpringTank& reverb_;
    ReverbHandover& handover_;
    const std::chrono::nanoseconds blockPeriod_;
    const std::chrono::microseconds sleepMicroseconds_;
};
