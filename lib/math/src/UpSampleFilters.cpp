#include "math/UpSampleFilters.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "tables/OversamplingFirs.h"

namespace {

const tables::OversamplingFirPair& firPair(int rate, int length) {
    for (const auto& pair : tables::kOversamplingFirs) {
        if (pair.rate == rate && pair.length == length) return pair;
    }
    return tables::kOversamplingFirs[0];
}

void copy(const float* from, float* to, int count) {
    std::memcpy(to, from, static_cast<std::size_t>(count) * sizeof(float));
}

}  // namespace

PolyphaseFilter::PolyphaseFilter(SamplerPath path, int rate, int length)
    : path_(path), rate_(rate), taps_(length + 1), kernels_(&fft::vectorKernels()) {
    const tables::OversamplingFirPair& pair = firPair(rate, length);
    std::vector<double> coefficients(static_cast<std::size_t>(rate * taps_));
    const auto at = [&](int phase, int k) -> double& {
        return coefficients[static_cast<std::size_t>(phase * taps_ + k)];
    };
    for (int j = 0; j < rate * length; ++j) {
        if (path == SamplerPath::Up) {
            // A held sample lasts a whole group of phases, so several taps meet the same input sample.
            for (int p = 0; p < rate; ++p)
                at(p, j > p ? (j - p + rate - 1) / rate : 0) += pair.up[j];
        } else {
            const int phase = (rate - j % rate) % rate;
            at(phase, (j + phase) / rate) += pair.down[j];
        }
    }
    coefficients_.assign(coefficients.begin(), coefficients.end());
}

void PolyphaseFilter::run(const float* newest, int lineLength, float* out, int count) const {
    if (path_ == SamplerPath::Up) {
        kernels_->firSplit(newest, coefficients_.data(), rate_, taps_, out, count, count);
    } else {
        kernels_->firMerge(newest, lineLength, coefficients_.data(), rate_, taps_, out, count);
    }
}

BlockPolyphaseFilter::BlockPolyphaseFilter(SamplerPath path, int blockLength, int rate, int length)
    : PolyphaseFilter(path, rate, length),
      blockLength_(blockLength),
      lineLength_(kReach + fft::paddedToVector(blockLength)),
      isPadded_(path == SamplerPath::Down && fft::paddedToVector(blockLength) != blockLength),
      delay_(static_cast<std::size_t>(lines() * lineLength_)),
      tail_(isPadded_ ? static_cast<std::size_t>(fft::paddedToVector(blockLength)) : 0) {}

void BlockPolyphaseFilter::process(const float* in, float* out) {
    const int stride = fft::paddedToVector(blockLength_);
    float* newest = delay_.data() + kReach;
    for (int i = 0; i < lines(); ++i)
        copy(in + i * stride, newest + i * lineLength_, blockLength_);

    run(newest, lineLength_, isPadded_ ? tail_.data() : out, stride);
    if (isPadded_) copy(tail_.data(), out, blockLength_);

    for (int i = 0; i < lines(); ++i) {
        float* line = delay_.data() + i * lineLength_;
        std::memmove(line, line + blockLength_, kReach * sizeof(float));
    }
}

ShortBlockPolyphaseFilter::ShortBlockPolyphaseFilter(SamplerPath path, int blockLength, int rate, int length)
    : PolyphaseFilter(path, rate, length),
      blockLength_(blockLength),
      isPadded_(path == SamplerPath::Down && blockLength < kLongestBlock),
      delay_(static_cast<std::size_t>(lines() * kLineLength)) {}

void ShortBlockPolyphaseFilter::process(const float* in, float* out) {
    if (position_ + kLongestBlock > kLineLength) {
        for (int i = 0; i < lines(); ++i) {
            float* line = delay_.data() + i * kLineLength;
            copy(line + position_ - kReach, line, kReach);
        }
        position_ = kReach;
    }
    float* newest = delay_.data() + position_;
    for (int i = 0; i < lines(); ++i)
        copy(in + i * kLongestBlock, newest + i * kLineLength, blockLength_);

    alignas(32) float tail[kLongestBlock];
    run(newest, kLineLength, isPadded_ ? tail : out, kLongestBlock);
    if (isPadded_) copy(tail, out, blockLength_);
    position_ += blockLength_;
}
