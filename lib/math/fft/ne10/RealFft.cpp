#include "math/fft/RealFft.h"

#include <NE10.h>
#include <bit>
#include <cstdio>
#include <stdexcept>

namespace fft {
namespace {

ne10_fft_cpx_float32_t* bins(std::complex<float>* values) {
    return reinterpret_cast<ne10_fft_cpx_float32_t*>(values);
}

// The library is asked once a process; the forms called below do not depend on its answer.
void initialiseLibrary() {
    static const bool isInitialised = ne10_init() == NE10_OK;
    static const int complaint = isInitialised ? 0 : std::fputs("Failed to initialise Ne10.\n", stderr);
    static_cast<void>(complaint);
}

}  // namespace

struct RealFft::Plan {
    explicit Plan(int size) : config((initialiseLibrary(), ne10_fft_alloc_r2c_float32(size))) {
        if (!config) throw std::bad_alloc();
    }
    ~Plan() { ne10_fft_destroy_r2c_float32(config); }
    Plan(const Plan&) = delete;
    Plan& operator=(const Plan&) = delete;

    ne10_fft_r2c_cfg_float32_t config;
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
    // The library's NEON forms by name: its own choice falls to the C forms where /proc/cpuinfo does not say
    // "neon". The input is only read.
    ne10_fft_r2c_1d_float32_neon(bins(spectrum), const_cast<float*>(time), plan_->config);
}

void RealFft::inverse(std::complex<float>* spectrum, float* time) {
    ne10_fft_c2r_1d_float32_neon(time, bins(spectrum), plan_->config);
}

}  // namespace fft
