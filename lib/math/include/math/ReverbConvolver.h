// The convolver of a measured reverb: SplitConvolver with its own helper thread, which exists only for a
// response of more than 2 K samples.
#pragma once

#include <memory>
#include <string>

#include "math/SplitConvolver.h"

class BackgroundFFTConvolverThread;

class ReverbConvolver {
public:
    // blockSize: samples of a call to process. ir: irLength samples, no longer needed afterwards. The fourth
    // argument is kept for the callers that pass it and has no effect. smallBlock: block of the middle, at
    // most headLength. headLength: K, a multiple of smallBlock. cpu: the helper's processor, counted from 0.
    // name: the helper's, at most 15 characters. sampleRate: Hz. Throws std::invalid_argument for sizes that
    // do not fit.
    ReverbConvolver(int blockSize, const float* ir, int irLength, int unused, int smallBlock, int headLength,
                    int cpu, const std::string& name, float sampleRate);

    // On a response that others use too: nothing is transformed here.
    ReverbConvolver(int blockSize, std::shared_ptr<const PreparedResponse> response, int cpu,
                    const std::string& name, float sampleRate);
    ~ReverbConvolver();

    // Writes the convolution to out. count: blockSize. in and out do not overlap. One thread, never held up
    // by the helper.
    void process(const float* in, float* out, int count);

    bool hasHelper() const { return thread_ != nullptr; }

private:
    SplitConvolver convolver_;
    std::unique_ptr<BackgroundFFTConvolverThread> thread_;
};
