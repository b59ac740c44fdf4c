// Raises a block to a whole multiple of its rate for a non-linear stage, and takes it back down.
//
// Up is a zero-order hold followed by a linear-phase low-pass of rate * length taps that makes up for the
// hold's droop; down is a low-pass of as many taps that keeps every rate-th sample, phase 0. Both have a gain
// of 1 at DC. Hold and low-pass collapse into one polyphase filter of length + 1 taps a phase that reads the
// input once, so the oversampled block comes out planar: all samples of phase 0, then all of phase 1, and so
// on. A pointwise stage needs no other order, and every loop over a plane is contiguous (Crochiere, Rabiner:
// Multirate Digital Signal Processing, 1983, chapter 3).
//
// One object is one direction pair of one channel, used by one thread at a time.
#pragma once

#include <memory>

#include "math/fft/AlignedFloats.h"

class UpDownSampler {
public:
    // One path of the pair. process takes a block at one rate and gives it at the other; the oversampled side
    // is planar, with planes of paddedToVector(blockLength) floats.
    class UpSampleFilter {
    public:
        virtual ~UpSampleFilter() = default;
        virtual void process(const float* in, float* out) = 0;
    };

    // blockLength: samples per call at the outer rate, at least 1. rate: 2 to 5. length: taps per phase, one
    // of 8 and 12 (rate 2), 6 and 10 (3), 6, 10 and 12 (4), 6 and 10 (5). Any other pair logs an error and
    // leaves an object whose calls do nothing.
    UpDownSampler(int blockLength, int rate, int length);

    int blockLength() const { return blockLength_; }
    int oversampledLength() const { return oversampledLength_; }
    int rate() const { return rate_; }

    // in: blockLength samples. out: oversampledLength samples in time order.
    void up(const float* in, float* out);
    // in: oversampledLength samples in time order. out: blockLength samples.
    void down(const float* in, float* out);

    // The same without the change of order. planes: planesLength() floats, sample rate * n + p at
    // planes[p * planeStride() + n]; what lies between blockLength and planeStride() is finite and of no
    // meaning.
    void upToPlanes(const float* in, float* planes);
    void downFromPlanes(const float* planes, float* out);
    int planeStride() const { return fft::paddedToVector(blockLength_); }
    int planesLength() const { return planeStride() * rate_; }

    // The filters that the pair selected; null where it is invalid.
    const UpSampleFilter* upFilter() const { return up_.get(); }
    const UpSampleFilter* downFilter() const { return down_.get(); }

private:
    int blockLength_;
    int oversampledLength_;
    int rate_;
    std::unique_ptr<UpSampleFilter> up_;
    std::unique_ptr<UpSampleFilter> down_;
    fft::AlignedFloats planes_;
};
