#include "math/fft/RealFft.h"

#include <bit>
#include <fftw3.h>
#include <mutex>
#include <stdexcept>

#include "math/fft/AlignedFloats.h"

namespace fft {
namespace {

// FFTW's planner keeps process-wide tables; only the execution of a plan is free of them.
std::mutex& plannerLock() {
    static std::mutex lock;
    return lock;
}

fftwf_complex* bins(std::complex<float>* values) {
    return reinterpret_cast<fftwf_complex*>(values);
}

}  // namespace

struct RealFft::Plan {
    explicit Plan(int size) {
        // An estimated plan reads no buffer, only its alignment; the samples given to forward stay unchanged.
        AlignedFloats time(static_cast<std::size_t>(size));
        AlignedFloats spectrum(static_cast<std::size_t>(size) + 2);
        auto* spectrumBins = reinterpret_cast<fftwf_complex*>(spectrum.data());
        const std::lock_guard lock(plannerLock());
        forward = fftwf_plan_dft_r2c_1d(size, time.data(), spectrumBins, FFTW_ESTIMATE | FFTW_PRESERVE_INPUT);
        inverse = fftwf_plan_dft_c2r_1d(size, spectrumBins, time.data(), FFTW_ESTIMATE | FFTW_DESTROY_INPUT);
    }
    ~Plan() {
        const std::lock_guard lock(plannerLock());
        fftwf_destroy_plan(forward);
        fftwf_destroy_plan(inverse);
    }
    Plan(const Plan&) = delete;
    Plan& operator=(const Plan&) = delete;

    fftwf_plan forward;
    fftwf_plan inverse;
};

RealFft::RealFft(int size) : size_(size) {
    if (size < 16 || !std::has_single_bit(static_cast<unsigned>(size))) {
        throw std::invalid_argument("RealFft: the size is not a power of two from 16 up");
    }
    plan_ = std::make_unique<Plan>(size);
}

RealFft::~RealFft() = default;
RealFft::RealFft(RealFft&&) noexcept = default;
RealFft& RealFft::operator=(RealFft&&) noexcept = default;

void RealFft::forward(const float* time, std::complex<float>* spectrum) {
    fftwf_execute_dft_r2c(plan_->forward, const_cast<float*>(time), bins(spectrum));
}

void RealFft::inverse(std::complex<float>* spectrum, float* time) {
    fftwf_execute_dft_c2r(plan_->inverse, bins(spectrum), time);
    const float scale = 1.0f / static_cast<float>(size_);
    for (int n = 0; n < size_; ++n)
        time[n] *= scale;
}

}  // namespace fft
