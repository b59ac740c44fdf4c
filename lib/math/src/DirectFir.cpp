#include "math/DirectFir.h"

#include <algorithm>

#include "math/fft/VectorKernels.h"

namespace {

constexpr int kTapGroup = 32;  // of the vector kernel

int paddedTapsFor(int taps) {
    return std::max(1, (taps + kTapGroup - 1) / kTapGroup) * kTapGroup;
}

}  // namespace

DirectFirCoefficients::DirectFirCoefficients(const float* h, int taps)
    : taps_(taps), reversed_(static_cast<std::size_t>(paddedTapsFor(taps))) {
    std::reverse_copy(h, h + taps, reversed_.end() - taps);
}

DirectFir::DirectFir(std::shared_ptr<const DirectFirCoefficients> coefficients, int longestBlock)
    : coefficients_(std::move(coefficients)),
      state_(static_cast<std::size_t>(coefficients_->paddedTaps() - 1 + fft::paddedToVector(longestBlock))),
      vectors_(static_cast<std::size_t>(fft::paddedToVector(longestBlock))) {}

void DirectFir::process(const float* in, float* out, int count) {
    const int history = coefficients_->paddedTaps() - 1;
    std::copy_n(in, count, state_.begin() + history);
    const auto filter = [&](float* to, int samples) {
        fft::vectorKernels().longFir(state_.data(), coefficients_->reversed(), coefficients_->paddedTaps(),
                                     to, samples);
    };
    const int padded = fft::paddedToVector(count);
    if (padded == count) {
        filter(out, count);
    } else {
        filter(vectors_.data(), padded);
        std::copy_n(vectors_.begin(), count, out);
    }
    std::copy_n(state_.begin() + count, history, state_.begin());
}

void DirectFir::reset() {
    std::fill(state_.begin(), state_.end(), 0.0f);
}
