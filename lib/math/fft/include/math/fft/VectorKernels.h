// The vector routines of the audio path: FIR sections in polyphase form and long ones, the eight-segment
// cubic, the one-pole high-pass and the arithmetic of spectra. One set is compiled for every processor of the
// platform (4 lanes: SSE2 or NEON), one more on x86-64 for AVX2 with FMA (8 lanes); vectorKernels() picks at
// the first call. The sets agree within float rounding.
//
// "Planes" are the phases of an oversampled block stored one after the other: plane p holds samples R*n + p
// of the R-times block, n = 0 .. N-1, and starts `stride` floats after plane p-1. None of the routines
// allocates.
#pragma once

namespace fft {

// A piecewise cubic over eight segments, each about its own centre: with t = x - centre[i],
// y = ((c3[i] t + c2[i]) t + c1[i]) t + c0[i], where i is the count of breakpoints below x.
struct alignas(32) CubicSegments {
    float breakpoints[8];  // seven, ascending; the eighth is unused
    float centre[8];
    float c3[8];
    float c2[8];
    float c1[8];
    float c0[8];
};

// The recursion of a one-pole high-pass, with the powers of its pole that a vector of steps needs at once.
struct HighPassRecursion {
    int phases;           // planes of the block, 1 to 5
    float polePower[5];   // pole^1 to pole^phases
    float groupPower[8];  // (pole^phases)^1 to ^8
    float lastIn;
    float lastOut;
};

// Up to 32 second-order sections in series, section j in place j of each row; unused places are 0.
//   H_j(z) = (b0 + b1 z^-1 + b2 z^-2) / (1 + a1 z^-1 + a2 z^-2)
struct alignas(32) BiquadLanes {
    static constexpr int kMaxSections = 32;

    int sections;
    alignas(32) float a1[kMaxSections];
    float a2[kMaxSections];
    float b2[kMaxSections];
    float b1[kMaxSections];
    float b0[kMaxSections];
    // State: of the transposed form, and each section's last output.
    float t1[kMaxSections];
    float t2[kMaxSections];
    float y[kMaxSections];
};

struct VectorKernels {
    // One input through `phases` filters of `taps` coefficients each, one output plane per filter:
    //   out[p * stride + n] = sum over k of coefficients[p * taps + k] * in[n - k]
    // in: at least taps - 1 earlier samples lie before it. phases: 1 to 5. count: a multiple of 8.
    void (*firSplit)(const float* in, const float* coefficients, int phases, int taps, float* out, int stride,
                     int count);

    // `phases` planes, each through its own filter of `taps` coefficients, summed:
    //   out[n] = sum over p and k of coefficients[p * taps + k] * in[p * stride + n - k]
    // in: at least taps - 1 earlier samples lie before each plane. count: a multiple of 8.
    void (*firMerge)(const float* in, int stride, const float* coefficients, int phases, int taps, float* out,
                     int count);

    // One long filter, its coefficients reversed in time:
    //   out[n] = sum over j < taps of coefficients[j] * in[n + j]
    // taps: a multiple of 32. count: a multiple of 8.
    void (*longFir)(const float* in, const float* coefficients, int taps, float* out, int count);

    // out[n] = the cubic at limit(in[n] / range, -1, 1). A value equal to a breakpoint falls in the lower
    // segment. in may be out. Any count.
    void (*cubicSegments)(const CubicSegments& curve, float range, const float* in, float* out, int count);

    // y[m] = pole * (y[m-1] + x[m] - x[m-1]) in place, m in the order of time over filter.phases planes.
    // count: samples of one plane, any.
    void (*onePoleHighPass)(HighPassRecursion& filter, float* planes, int stride, int count);

    // All sections of a cascade. out[n] is the last section's output sections - 1 samples ago: each section
    // works on what its predecessor gave a sample earlier. in may be out. Any count.
    void (*biquadCascade)(BiquadLanes& lanes, const float* in, float* out, int count);

    // Eight rows of count samples, each through its own low-pass: y = (1 - poles[r]) x + poles[r] y, from and
    // to states[r]. in: where each row begins. out: `stride` floats from one row to the next. Any count.
    void (*onePoleBank)(const float* poles, float* states, const float* const* in, float* out, int stride,
                        int count);

    // 16 * chunks complex bins to chunks of 16 real parts and 16 imaginary parts, `stride` floats from the
    // start of one to that of the next, and back.
    void (*binsToChunks)(const float* bins, float* chunk, int stride, int chunks);
    void (*chunksToBins)(const float* chunk, int stride, float* bins, int chunks);

    // Complex sums of products, bin by bin, for each chunk:
    //   sum = start + sum over r < rows of a[r] * b[r]
    // The rows of a chunk lie one after the other, its neighbour's rows aStride and bStride floats on,
    // start's startStride; sum has one row. start may be sum, and null stands for zero.
    void (*sumProducts)(const float* start, int startStride, const float* a, int aStride, const float* b,
                        int bStride, int rows, float* sum, int chunks);

    // Eight such sums at once, each against the rows of a one further on, for one reading of both factors:
    //   sums[m] += sum over r < rows of a[r + m] * b[r],   m = 0 .. 7
    // sums has eight rows.
    void (*sumProductsAhead)(const float* a, int aStride, const float* b, int bStride, int rows, float* sums,
                             int chunks);

    // In place over the complex bins 0 to M, M = half, for k = 0 .. M/2:
    //   e = scale (z[k] + conj z[M-k])   d = u[k] (z[k] - conj z[M-k])
    //   z[k] = e + d                     z[M-k] = conj(e - d)
    // which joins the transform of a real block to that of its even and odd samples, either way. twiddles: u
    // for k < M/2; at M/2 it counts as -scale. half: a multiple of 8.
    void (*realButterfly)(float* bins, const float* twiddles, float scale, int half);
};

// The fastest set that this processor runs.
const VectorKernels& vectorKernels();

// The set that every processor of this platform runs.
const VectorKernels& portableVectorKernels();

}  // namespace fft
