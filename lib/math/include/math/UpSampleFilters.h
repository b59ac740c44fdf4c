// The fixed family of filters that UpDownSampler chooses from, one class for each rate and length (the two
// numbers of the name; length in taps per phase), and for some a form for blocks of at most 8 samples (SBS).
//
// An object is the up or the down path of its pair, in polyphase form:
//
//   up:    out[p][n] = sum over k of u[p][k] in[n-k]              u[p][k] = sum of h[j], ceil((j - p) / rate)
//   = k down:  out[n] = sum over p and k of d[p][k] in[p][n-k]        d[p][k] = h[rate k - p]
//
// with h the filter of rate * length taps at the high rate and k = 0 .. length.
#pragma once

#include "math/UpDownSampler.h"
#include "math/fft/AlignedFloats.h"
#include "math/fft/VectorKernels.h"

enum class SamplerPath { Up, Down };

// The coefficients of one path and the vector routines that run them.
class PolyphaseFilter : public UpDownSampler::UpSampleFilter {
protected:
    PolyphaseFilter(SamplerPath path, int rate, int length);

    // One delay line for the up path, one a plane for the down path; each reaches kReach samples back.
    int lines() const { return path_ == SamplerPath::Up ? 1 : rate_; }
    // newest: the first new sample of the first delay line. count: a multiple of 8.
    void run(const float* newest, int lineLength, float* out, int count) const;

    static constexpr int kReach = 16;

private:
    SamplerPath path_;
    int rate_;
    int taps_;
    fft::AlignedFloats coefficients_;
    const fft::VectorKernels* kernels_;
};

// Moves the history to the front after each block.
class BlockPolyphaseFilter : public PolyphaseFilter {
public:
    void process(const float* in, float* out) override;

protected:
    BlockPolyphaseFilter(SamplerPath path, int blockLength, int rate, int length);

private:
    int blockLength_;
    int lineLength_;
    bool isPadded_;  // of the down path's output: it goes through tail_
    fft::AlignedFloats delay_;
    fft::AlignedFloats tail_;
};

// A short block would move more history than it has samples: the blocks walk along a longer line instead.
class ShortBlockPolyphaseFilter : public PolyphaseFilter {
public:
    static constexpr int kLongestBlock = 8;
    void process(const float* in, float* out) override;

protected:
    ShortBlockPolyphaseFilter(SamplerPath path, int blockLength, int rate, int length);

private:
    static constexpr int kLineLength = 128;

    int blockLength_;
    int position_ = kReach;
    bool isPadded_;
    fft::AlignedFloats delay_;
};

#define TARVEK_UP_SAMPLE_FILTER(name, base, rate, length)                                  \
    class name final : public base {                                                       \
    public:                                                                                \
        name(SamplerPath path, int blockLength) : base(path, blockLength, rate, length) {} \
    };

TARVEK_UP_SAMPLE_FILTER(UpSampleFilter28, BlockPolyphaseFilter, 2, 8)
TARVEK_UP_SAMPLE_FILTER(UpSampleFilter212, BlockPolyphaseFilter, 2, 12)
TARVEK_UP_SAMPLE_FILTER(UpSampleFilter36, BlockPolyphaseFilter, 3, 6)
TARVEK_UP_SAMPLE_FILTER(UpSampleFilter310, BlockPolyphaseFilter, 3, 10)
TARVEK_UP_SAMPLE_FILTER(UpSampleFilter46, BlockPolyphaseFilter, 4, 6)
TARVEK_UP_SAMPLE_FILTER(UpSampleFilter410, BlockPolyphaseFilter, 4, 10)
TARVEK_UP_SAMPLE_FILTER(UpSampleFilter412, BlockPolyphaseFilter, 4, 12)
TARVEK_UP_SAMPLE_FILTER(UpSampleFilter56, BlockPolyphaseFilter, 5, 6)
TARVEK_UP_SAMPLE_FILTER(UpSampleFilter510, BlockPolyphaseFilter, 5, 10)
TARVEK_UP_SAMPLE_FILTER(UpSampleFilter28SBS, ShortBlockPolyphaseFilter, 2, 8)
TARVEK_UP_SAMPLE_FILTER(UpSampleFilter212SBS, ShortBlockPolyphaseFilter, 2, 12)
TARVEK_UP_SAMPLE_FILTER(UpSampleFilter310SBS, ShortBlockPolyphaseFilter, 3, 10)
TARVEK_UP_SAMPLE_FILTER(UpSampleFilter410SBS, ShortBlockPolyphaseFilter, 4, 10)
TARVEK_UP_SAMPLE_FILTER(UpSampleFilter412SBS, ShortBlockPolyphaseFilter, 4, 12)
TARVEK_UP_SAMPLE_FILTER(UpSampleFilter510SBS, ShortBlockPolyphaseFilter, 5, 10)

#undef TARVEK_UP_SAMPLE_FILTER
