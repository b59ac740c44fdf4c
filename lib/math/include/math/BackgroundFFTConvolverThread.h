// The helper thread of a convolver: looks for tail jobs every millisecond and runs them.
#pragma once

#include <chrono>
#include <string>

#include "utility/TarvekThread.h"

class SplitConvolver;

class BackgroundFFTConvolverThread : public TarvekThread {
public:
    static constexpr int kPriority = 48;

    // convolver: outlives the thread. cpu: processor, counted from 0. name: at most 15 characters.
    BackgroundFFTConvolverThread(SplitConvolver& convolver, int cpu, const std::string& name);
    ~BackgroundFFTConvolverThread() override;

protected:
    void init() override {}
    void loop() override;

private:
    SplitConvolver& convolver_;
    const std::chrono::microseconds sleepMicroseconds_{1000};
};
