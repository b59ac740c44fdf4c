// Eight parallel combs, each with a low-pass in its loop (J. A. Moorer, "About this reverberation business",
// Computer Music Journal 3(2), 1979).
//
//   out = line[k],   store <- out (1 - d) + store d,   line[k] = in + store feedback
//
// k runs around the line's length, which is the delay; d = exp(-2 pi dampingHz / fs) is the low-pass's pole.
// The eight low-passes run side by side in the lanes of a vector.
//
// Threads: setters on the control side, one word each; addTo and clear on the audio thread.
#pragma once

#include <array>
#include <atomic>
#include <vector>

#include "math/fft/VectorKernels.h"

namespace rvb {

class DampedCombs {
public:
    static constexpr int kCount = 8;

    // lengthsSamples: delays, at least 1. Damping and feedback start at 0.
    explicit DampedCombs(const std::array<int, kCount>& lengthsSamples);

    // comb: 0 to 7.
    void setDamping(int comb, float pole) { dampings_[comb].store(pole, std::memory_order_relaxed); }
    void setFeedback(int comb, float gain) { feedbacks_[comb].store(gain, std::memory_order_relaxed); }
    float damping(int comb) const { return dampings_[comb].load(std::memory_order_relaxed); }
    float feedback(int comb) const { return feedbacks_[comb].load(std::memory_order_relaxed); }

    // Adds n samples of the combs' sum to sum; in and sum are apart.
    void addTo(float* sum, const float* in, int n);

    // Back to silence.
    void clear();

private:
    static constexpr int kLongestRun = 64;

    void addRun(float* sum, const float* in, int n);
    const float* head(int comb, int n);
    void write(int comb, const float* in, int n);

    const fft::VectorKernels* kernels_;
    std::atomic<float> dampings_[kCount]{};
    std::atomic<float> feedbacks_[kCount]{};
    std::array<std::vector<float>, kCount> lines_;
    std::array<int, kCount> k_{};
    int longestRun_;  // no comb hears within it what it writes
    alignas(32) std::array<float, kCount> stores_{};
    // A row for each comb.
    alignas(32) std::array<float, kCount * kLongestRun> damped_{};
    alignas(32) std::array<float, kCount * kLongestRun> wrapped_{};  // copies across the end of a line
};

}  // namespace rvb
