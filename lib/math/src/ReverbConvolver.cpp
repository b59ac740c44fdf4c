#include "math/ReverbConvolver.h"

#include "math/BackgroundFFTConvolverThread.h"

ReverbConvolver::ReverbConvolver(int blockSize, const float* ir, int irLength, int, int smallBlock,
                                 int headLength, int cpu, const std::string& name, float sampleRate)
    : ReverbConvolver(blockSize,
                      std::make_shared<const PreparedResponse>(ir, irLength, smallBlock, headLength), cpu,
                      name, sampleRate) {}

ReverbConvolver::ReverbConvolver(int blockSize, std::shared_ptr<const PreparedResponse> response, int cpu,
                                 const std::string& name, float sampleRate)
    : convolver_(blockSize, response->smallBlock, response->headLength, name) {
    convolver_.exchange(std::make_unique<SplitConvolver::Stages>(response, blockSize, sampleRate));
    if (!convolver_.hasTail()) return;
    thread_ = std::make_unique<BackgroundFFTConvolverThread>(convolver_, cpu, name);
    thread_->start();
}

ReverbConvolver::~ReverbConvolver() = default;

void ReverbConvolver::process(const float* in, float* out, int) {
    convolver_.process(in, out);
}
