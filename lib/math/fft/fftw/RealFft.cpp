#include "math/fft/RealFft.h"

#include <bit>
#include <cmath>
#include <fftw3.h>
#include <mutex>
#include <numbers>
#include <stdexcept>

#include "math/fft/AlignedFloats.h"
#include "math/fft/VectorKernels.h"

namespace fft {
namespace {

// FFTW's planner keeps process-wide tables; only the execution of a plan is free of them.
std::mutex& plannerLock() {
    static std::mutex lock;
    return lock;
}

fftwf_complex* complexes(float* values) {
    return reinterpret_cast<fftwf_complex*>(values);
}

// u[k] = scale * (-i) exp(-2 pi i k / N) for the forward step, its conjugate for the inverse one.
AlignedFloats makeTwiddles(int size, double scale, double sign) {
    AlignedFloats twiddles(static_cast<std::size_t>(size) / 2);
    for (std::size_t k = 0; k < twiddles.size() / 2; ++k) {
        const double angle = 2 * std::numbers::pi * static_cast<double>(k) / size;
        twiddles[2 * k] = static_cast<float>(-scale * std::sin(angle));
        twiddles[2 * k + 1] = static_cast<float>(-scale * sign * std::cos(angle));
    }
    return twiddles;
}

}  // namespace

// The real transform is FFTW's complex one of half the size and a butterfly of our own: an estimated plan for
// real data joins its halves with two lanes at a time, which doubles its cost.
struct RealFft::Plan {
    explicit Plan(int size)
        : half(size / 2),
          inverseScale(1.0f / static_cast<float>(size)),
          forwardTwiddles(makeTwiddles(size, 0.5, 1.0)),
          inverseTwiddles(makeTwiddles(size, 1.0 / size, -1.0)) {
        // An estimated plan reads no buffer, only its alignment.
        AlignedFloats time(static_cast<std::size_t>(size));
        AlignedFloats spectrum(static_cast<std::size_t>(size));
        const std::lock_guard lock(plannerLock());
        forward = fftwf_plan_dft_1d(half, complexes(time.data()), complexes(spectrum.data()), FFTW_FORWARD,
                                    FFTW_ESTIMATE | FFTW_PRESERVE_INPUT);
        inverse = fftwf_plan_dft_1d(half, complexes(spectrum.data()), complexes(time.data()), FFTW_BACKWARD,
                                    FFTW_ESTIMATE | FFTW_DESTROY_INPUT);
    }
    ~Plan() {
        const std::lock_guard lock(plannerLock());
        fftwf_destroy_plan(forward);
        fftwf_destroy_plan(inverse);
    }
    Plan(const Plan&) = delete;
    Plan& operator=(const Plan&) = delete;

    const int half;
    const float inverseScale;
    const AlignedFloats forwardTwiddles;
    const AlignedFloats inverseTwiddles;
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
    auto* bins = reinterpret_cast<float*>(spectrum);
    fftwf_execute_dft(plan_->forward, complexes(const_cast<float*>(time)), complexes(bins));
    spectrum[plan_->half] = spectrum[0];
    vectorKernels().realButterfly(bins, plan_->forwardTwiddles.data(), 0.5f, plan_->half);
}

void RealFft::inverse(std::complex<float>* spectrum, float* time) {
    auto* bins = reinterpret_cast<float*>(spectrum);
    spectrum[0] = spectrum[0].real();
    spectrum[plan_->half] = spectrum[plan_->half].real();
    vectorKernels().realButterfly(bins, plan_->inverseTwiddles.data(), plan_->inverseScale, plan_->half);
    fftwf_execute_dft(plan_->inverse, complexes(bins), complexes(time));
}

}  // namespace fft
