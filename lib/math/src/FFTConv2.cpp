#include "math/FFTConv2.h"

#include <algorithm>
#include <cstdint>

#include "utility/Log.h"

namespace {

constexpr int kPartitionsToSumAhead = 32;

}  // namespace

FFTConv2::FFTConv2(int blockSize, const float* ir, int irLength, float sampleRate)
    : FFTConv2(std::make_shared<const PartitionSpectra>(blockSize, ir, irLength), sampleRate) {}

FFTConv2::FFTConv2(std::shared_ptr<const PartitionSpectra> irSpectra, float sampleRate)
    : irSpectra_(std::move(irSpectra)),
      blockSize_(irSpectra_->blockSize()),
      segmentSize_(irSpectra_->segmentSize()),
      sampleRate_(sampleRate),
      fftSize_(irSpectra_->fftSize()),
      partitionCount_(irSpectra_->partitionCount()),
      ringSize_(irSpectra_->stride() * partitionCount_),
      binCount_(irSpectra_->binCount()),
      fftConfig_(std::make_shared<fft::RealFft>(fftSize_)),
      timeBuffer_(static_cast<std::size_t>(fftSize_)),
      bins_(static_cast<std::size_t>(binCount_)),
      accumulator_(segmentSize_, 1),
      tailAccumulator_(segmentSize_, 1),
      overlap_(static_cast<std::size_t>(fftSize_)),
      inputBuffer_(static_cast<std::size_t>(blockSize_)),
      inputSpectra_(segmentSize_, ringSize_) {
    if (irSpectra_->stride() == 1 && partitionCount_ >= kPartitionsToSumAhead)
        ahead_.emplace(segmentSize_, fft::SpectrumRows::kRowsAhead);
    checkAlignment();
    tvk::log::debug("FFTConv2", "block %d, transform %d, %d partitions at %.0f Hz", blockSize_, fftSize_,
                    partitionCount_, static_cast<double>(sampleRate_));
}

void FFTConv2::checkAlignment() const {
    for (int bin = 0; bin < segmentSize_; ++bin) {
        const auto address = reinterpret_cast<std::uintptr_t>(accumulator_.data() + 2 * bin);
        if (address % sizeof(std::complex<float>) != 0) TVK_ERROR("Data is not aligned correctly");
    }
}

void FFTConv2::process(const float* in, float* out, int count) {
    while (count > 0) {
        if (inputFill_ == 0) sumOlderPartitions();
        const int length = std::min(count, blockSize_ - inputFill_);
        std::copy_n(in, length, inputBuffer_.data() + inputFill_);
        transformInput();
        addNewestPartition();
        for (int n = 0; n < length; ++n)
            out[n] += timeBuffer_[inputFill_ + n] + overlap_[inputFill_ + n];
        inputFill_ += length;
        if (inputFill_ == blockSize_) finishBlock();
        in += length;
        out += length;
        count -= length;
    }
}

// The samples behind inputFill are still zero.
void FFTConv2::transformInput() {
    std::copy(inputBuffer_.begin(), inputBuffer_.end(), timeBuffer_.begin());
    std::fill(timeBuffer_.begin() + blockSize_, timeBuffer_.end(), 0.0f);
    fftConfig_->forward(timeBuffer_.data(), bins_.data());
    inputSpectra_.set(ringRow(ringIndex_), bins_.data());
}

int FFTConv2::ringRow(int slot) const {
    const int stride = irSpectra_->stride();
    return slot % stride * partitionCount_ + slot / stride;
}

// The newest `count` slots behind the current one, in the two runs that the ring's end may cut them into.
// run(how many blocks ago the run begins, its first row, its length)
template <typename Run>
void FFTConv2::forOlderSlots(int count, Run run) {
    const int newest = ringRow(ringIndex_);
    const int plane = newest / partitionCount_ * partitionCount_;
    const int beforeWrap = std::min(count, plane + partitionCount_ - 1 - newest);
    if (beforeWrap > 0) run(1, newest + 1, beforeWrap);
    if (count > beforeWrap) run(1 + beforeWrap, plane, count - beforeWrap);
}

void FFTConv2::sumOlderPartitions() {
    if (ahead_ && blockAhead_ == 0) sumAhead();
    const fft::SpectrumRows* start = ahead_ ? &*ahead_ : nullptr;
    int startRow = blockAhead_;
    const int missing = ahead_ ? blockAhead_ : irSpectra_->filledPartitionCount() - 1;
    if (ahead_ && missing == 0)
        accumulator_.setToProducts(start, startRow, irSpectra_->rows(), 0, inputSpectra_, 0, 0);
    forOlderSlots(missing, [&](int blocksAgo, int row, int count) {
        accumulator_.setToProducts(start, startRow, irSpectra_->rows(), blocksAgo, inputSpectra_, row, count);
        start = &accumulator_;
        startRow = 0;
    });
}

// The input of d blocks ago meets partition d + m for the block m ahead of this one.
void FFTConv2::sumAhead() {
    ahead_->clear();
    forOlderSlots(irSpectra_->filledPartitionCount() - 1, [&](int blocksAgo, int row, int count) {
        ahead_->addProductsAhead(irSpectra_->rows(), blocksAgo, inputSpectra_, row, count);
    });
}

void FFTConv2::addNewestPartition() {
    tailAccumulator_.setToProducts(&accumulator_, 0, irSpectra_->rows(), 0, inputSpectra_,
                                   ringRow(ringIndex_), 1);
    tailAccumulator_.get(0, bins_.data());
    fftConfig_->inverse(bins_.data(), timeBuffer_.data());
}

// The upper half of the window is zero: a block and a partition together fill no more than a segment.
void FFTConv2::finishBlock() {
    const int carried = segmentSize_ - blockSize_;
    for (int n = 0; n < carried; ++n)
        overlap_[n] = overlap_[n + blockSize_] + timeBuffer_[n + blockSize_];
    std::fill_n(inputBuffer_.begin(), blockSize_, 0.0f);
    inputFill_ = 0;
    ringIndex_ = ringIndex_ == 0 ? ringSize_ - 1 : ringIndex_ - 1;
    if (ahead_) blockAhead_ = (blockAhead_ + 1) % fft::SpectrumRows::kRowsAhead;
}

void FFTConv2::reset() {
    inputSpectra_.clear();
    accumulator_.clear();
    std::fill(overlap_.begin(), overlap_.end(), 0.0f);
    std::fill(inputBuffer_.begin(), inputBuffer_.end(), 0.0f);
    inputFill_ = 0;
    ringIndex_ = 0;
    blockAhead_ = 0;
}
