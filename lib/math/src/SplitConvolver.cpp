#include "math/SplitConvolver.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace {

int checkedBlock(int blockSize, int smallBlock, int headLength) {
    if (blockSize < 1 || blockSize > headLength)
        throw std::invalid_argument("SplitConvolver: the block is empty or longer than the head");
    if (smallBlock < 1 || headLength % smallBlock != 0)
        throw std::invalid_argument("SplitConvolver: the head is not a multiple of the small block");
    return blockSize;
}

std::optional<FFTConv2> stageOn(const std::shared_ptr<const PartitionSpectra>& spectra, float sampleRate) {
    if (!spectra) return std::nullopt;
    return std::make_optional<FFTConv2>(spectra, sampleRate);
}

}  // namespace

SplitConvolver::Stages::Stages(const std::shared_ptr<const PreparedResponse>& response, int blockSize,
                               float sampleRate)
    : head(response->head, blockSize),
      middle(stageOn(response->middle, sampleRate)),
      tail(stageOn(response->tail, sampleRate)) {}

SplitConvolver::SplitConvolver(int blockSize, int smallBlock, int headLength, const std::string& name)
    : blockSize_(checkedBlock(blockSize, smallBlock, headLength)),
      smallBlock_(smallBlock),
      headLength_(headLength),
      tail_(headLength, name),
      middleOut_(static_cast<std::size_t>(headLength)),
      middleNext_(static_cast<std::size_t>(headLength)),
      input_(static_cast<std::size_t>(headLength)) {}

std::unique_ptr<SplitConvolver::Stages> SplitConvolver::exchange(std::unique_ptr<Stages> stages) {
    std::swap(stages_, stages);
    tail_.connect(hasTail() ? &*stages_->tail : nullptr);
    std::fill(middleOut_.begin(), middleOut_.end(), 0.0f);
    std::fill(middleNext_.begin(), middleNext_.end(), 0.0f);
    position_ = 0;
    return stages;
}

bool SplitConvolver::process(const float* in, float* out) {
    stages_->head.process(in, out, blockSize_);
    bool hasHandedOver = false;
    for (int done = 0; done < blockSize_;) {
        const int length = std::min(blockSize_ - done, smallBlock_ - position_ % smallBlock_);
        addStages(in + done, out + done, length);
        done += length;
        if (position_ == headLength_) {
            turnHead();
            hasHandedOver = hasTail();
        }
    }
    return hasHandedOver;
}

// Within one small block: plays what is ready, collects the input, and runs the middle at the boundary.
void SplitConvolver::addStages(const float* in, float* out, int count) {
    if (!stages_->middle) {
        position_ = (position_ + count) % headLength_;
        return;
    }
    for (int n = 0; n < count; ++n)
        out[n] += middleOut_[position_ + n];
    if (hasTail()) {
        const float* tailOut = tail_.output() + position_;
        for (int n = 0; n < count; ++n)
            out[n] += tailOut[n];
    }
    std::copy_n(in, count, input_.begin() + position_);
    position_ += count;
    if (position_ % smallBlock_ == 0) {
        const int start = position_ - smallBlock_;
        stages_->middle->process(input_.data() + start, middleNext_.data() + start, smallBlock_);
    }
}

void SplitConvolver::turnHead() {
    std::swap(middleOut_, middleNext_);
    std::fill(middleNext_.begin(), middleNext_.end(), 0.0f);
    if (hasTail()) tail_.turn(input_.data());
    position_ = 0;
}
