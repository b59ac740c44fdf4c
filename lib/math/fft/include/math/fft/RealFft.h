// Fourier transform of a real block, a power of two of at least 16 samples long.
//
//   forward:  X[k] = sum over n of x[n] exp(-2 pi i k n / N),            k = 0 .. N/2
//   inverse:  x[n] = 1/N sum over k of X[k] exp(2 pi i k n / N), X[N-k] = conj X[k]
//
// forward then inverse gives the input back. FFTW does the work on x86-64, Ne10 on 64-bit Arm; the plan is
// made in the constructor (under one process-wide lock, estimated and not measured, so that results repeat)
// and never on the audio thread. One object serves one thread at a time: the plan owns scratch memory.
#pragma once

#include <complex>
#include <memory>

namespace fft {

class RealFft {
public:
    // size: N in samples. Throws std::invalid_argument unless it is a power of two from 16 up.
    explicit RealFft(int size);
    ~RealFft();
    RealFft(RealFft&&) noexcept;
    RealFft& operator=(RealFft&&) noexcept;

    int size() const { return size_; }
    int binCount() const { return size_ / 2 + 1; }

    // time: N samples, unchanged. bins: N/2 + 1 values. Buffers begin on 16 bytes (as std::vector's do) and
    // do not overlap.
    void forward(const float* time, std::complex<float>* bins);

    // bins: N/2 + 1 values, scratch after the call. time: N samples. The imaginary parts of bins 0 and N/2
    // count as 0. Same alignment as forward.
    void inverse(std::complex<float>* bins, float* time);

private:
    struct Plan;
    int size_;
    std::unique_ptr<Plan> plan_;
};

}  // namespace fft
