#include "math/fft/VectorKernels.h"

#include "../kernels/Vector.inl"
//
#include "../kernels/BiquadCascade.inl"
#include "../kernels/CubicSegments.inl"
#include "../kernels/Fir.inl"
#include "../kernels/LongFir.inl"
#include "../kernels/OnePoleBank.inl"
#include "../kernels/OnePoleHighPass.inl"
#include "../kernels/RealButterfly.inl"
#include "../kernels/SpectrumChunks.inl"

namespace fft {

#if defined(__x86_64__)
extern const VectorKernels kVectorKernelsAvx2;
#endif

const VectorKernels& portableVectorKernels() {
    static constexpr VectorKernels kKernels{firSplit,        firMerge,      longFir,          cubicSegments,
                                            onePoleHighPass, biquadCascade, onePoleBank,      binsToChunks,
                                            chunksToBins,    sumProducts,   sumProductsAhead, realButterfly};
    return kKernels;
}

const VectorKernels& vectorKernels() {
#if defined(__x86_64__)
    static const bool hasAvx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    if (hasAvx2) return kVectorKernelsAvx2;
#endif
    return portableVectorKernels();
}

}  // namespace fft
