#include "Reference.h"

#include <algorithm>

#include "math/fft/AlignedFloats.h"

#ifdef TARVEK_BENCH_FFTW
#include <fftw3.h>
#else
#include "math/fft/RealFft.h"
#endif

namespace bench {
namespace {

constexpr int kSize = 8192;

fft::AlignedFloats pulse() {
    fft::AlignedFloats samples(kSize);
    for (int n = 0; n < kSize; ++n)
        samples[static_cast<std::size_t>(n)] = static_cast<float>(n % 17) / 100.0f;
    return samples;
}

}  // namespace

#ifdef TARVEK_BENCH_FFTW

struct Reference::Plans {
    Plans() : time(kSize), bins(kSize + 2), back(kSize) {
        auto* spectrum = reinterpret_cast<fftwf_complex*>(bins.data());
        forward = fftwf_plan_dft_r2c_1d(kSize, time.data(), spectrum, FFTW_MEASURE);
        inverse = fftwf_plan_dft_c2r_1d(kSize, spectrum, back.data(), FFTW_MEASURE);
        // Planning by measurement writes into the buffers.
        const fft::AlignedFloats samples = pulse();
        std::copy(samples.begin(), samples.end(), time.begin());
    }
    ~Plans() {
        fftwf_destroy_plan(forward);
        fftwf_destroy_plan(inverse);
    }
    void run() {
        fftwf_execute(forward);
        fftwf_execute(inverse);
    }
    fft::AlignedFloats time;
    fft::AlignedFloats bins;
    fft::AlignedFloats back;
    fftwf_plan forward;
    fftwf_plan inverse;
};

const char* Reference::name() {
    return "FFTW single precision, 8192 points, forward and inverse, FFTW_MEASURE";
}

#else

struct Reference::Plans {
    Plans() : transform(kSize), time(pulse()), bins(kSize + 2), back(kSize) {}
    void run() {
        auto* spectrum = reinterpret_cast<std::complex<float>*>(bins.data());
        transform.forward(time.data(), spectrum);
        transform.inverse(spectrum, back.data());
    }
    fft::RealFft transform;
    fft::AlignedFloats time;
    fft::AlignedFloats bins;
    fft::AlignedFloats back;
};

const char* Reference::name() {
    return "Ne10, 8192 points, forward and inverse";
}

#endif

Reference::Reference() : plans_(std::make_unique<Plans>()) {}
Reference::~Reference() = default;
void Reference::run() {
    plans_->run();
}

}  // namespace bench
