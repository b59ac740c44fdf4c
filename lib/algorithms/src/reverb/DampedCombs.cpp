#include "algorithms/reverb/DampedCombs.h"

#include <algorithm>

namespace rvb {

DampedCombs::DampedCombs(const std::array<int, kCount>& lengthsSamples)
    : kernels_(&fft::vectorKernels()), longestRun_(kLongestRun) {
    for (std::size_t c = 0; c < lines_.size(); ++c) {
        lines_[c].resize(static_cast<std::size_t>(std::max(lengthsSamples[c], 1)));
        longestRun_ = std::min(longestRun_, static_cast<int>(lines_[c].size()));
    }
}

void DampedCombs::addTo(float* sum, const float* in, int n) {
    for (int done = 0; done < n; done += longestRun_)
        addRun(sum + done, in + done, std::min(n - done, longestRun_));
}

void DampedCombs::addRun(float* sum, const float* in, int n) {
    alignas(32) float poles[kCount];
    const float* heard[kCount];
    for (int c = 0; c < kCount; ++c) {
        poles[c] = damping(c);
        heard[c] = head(c, n);
    }
    for (int i = 0; i < n; ++i)
        sum[i] += ((heard[0][i] + heard[1][i]) + (heard[2][i] + heard[3][i])) +
                  ((heard[4][i] + heard[5][i]) + (heard[6][i] + heard[7][i]));
    kernels_->onePoleBank(poles, stores_.data(), heard, damped_.data(), kLongestRun, n);
    for (int c = 0; c < kCount; ++c)
        write(c, in, n);
}

// The next n samples of a comb's line, one after the other.
const float* DampedCombs::head(int comb, int n) {
    const auto c = static_cast<std::size_t>(comb);
    const float* line = lines_[c].data();
    const int beforeEnd = static_cast<int>(lines_[c].size()) - k_[c];
    if (beforeEnd >= n) return line + k_[c];
    float* row = wrapped_.data() + c * kLongestRun;
    std::copy_n(line + k_[c], beforeEnd, row);
    std::copy_n(line, n - beforeEnd, row + beforeEnd);
    return row;
}

void DampedCombs::write(int comb, const float* in, int n) {
    const auto c = static_cast<std::size_t>(comb);
    const float gain = feedback(comb);
    const float* damped = damped_.data() + c * kLongestRun;
    const int length = static_cast<int>(lines_[c].size());
    while (n > 0) {
        const int run = std::min(n, length - k_[c]);
        float* line = lines_[c].data() + k_[c];
        for (int i = 0; i < run; ++i)
            line[i] = in[i] + damped[i] * gain;
        k_[c] = k_[c] + run == length ? 0 : k_[c] + run;
        in += run;
        damped += run;
        n -= run;
    }
}

void DampedCombs::clear() {
    for (auto& line : lines_)
        std::fill(line.begin(), line.end(), 0.0f);
    stores_.fill(0.0f);
}

}  // namespace rvb
