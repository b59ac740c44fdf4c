// A short delay of a control signal, read between its samples by a first-order allpass.
//
//   y = line[i] + (1 - frac) (line[i+1] - y),   line holds in + feedback y
//
// line[i+1] lies the whole samples of the delay back, line[i] one more, frac is the rest. frac is kept
// within 0.5 to 1.5, where the allpass forgets its past: at 0 it would ring at half the sample rate for good.
//
// Audio thread.
#pragma once

#include <vector>

class ModulationDelay {
public:
    // maxSeconds at sampleRateHz: the length of the line. feedback: below 1.
    ModulationDelay(float maxSeconds, float sampleRateHz, float feedback);

    // count samples, each delayed by 2 to maxSeconds * sampleRateHz samples; out may be in.
    void process(const float* in, float delaySamples, float* out, int count);

    // Back to zeros.
    void reset();

private:
    std::vector<float> line_;
    const float feedback_;
    int writeIndex_ = 0;
    float last_ = 0.0f;
};
