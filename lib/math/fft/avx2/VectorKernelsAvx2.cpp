// Compiled for AVX2 and FMA. It includes no library header with inline functions: the linker could take such
// a function's copy from here for the whole program, which would then need this processor.
#include "../kernels/Vector.inl"
//
#include "math/fft/VectorKernels.h"
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

extern const VectorKernels kVectorKernelsAvx2;
const VectorKernels kVectorKernelsAvx2{firSplit,        firMerge,      longFir,          cubicSegments,
                                       onePoleHighPass, biquadCascade, onePoleBank,      binsToChunks,
                                       chunksToBins,    sumProducts,   sumProductsAhead, realButterfly};

}  // namespace fft
