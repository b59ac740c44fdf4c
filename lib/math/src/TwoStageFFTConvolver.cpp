#include "math/TwoStageFFTConvolver.h"

TwoStageFFTConvolver::TwoStageFFTConvolver(int blockSize, const float* ir, int irLength, int unused,
                                           int smallBlocks, int headBlocks, int cpu, const std::string& name,
                                           float sampleRate)
    : convolver_(blockSize, ir, irLength, unused, smallBlocks * blockSize, headBlocks * blockSize, cpu, name,
                 sampleRate) {}

TwoStageFFTConvolver::TwoStageFFTConvolver(int blockSize, std::shared_ptr<const PreparedResponse> response,
                                           int cpu, const std::string& name, float sampleRate)
    : convolver_(blockSize, std::move(response), cpu, name, sampleRate) {}
