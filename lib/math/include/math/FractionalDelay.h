// A write head and a reading position between the samples of a ring.
//
//   p = (index of the newest sample) - d,   i = floor(p),   f = p - i
//   linear         x[i] + f (x[i+1] - x[i])
//   third order    Lagrange's cubic through x[i-1] .. x[i+2]; linear within one sample of either end, where
//                  that would read across the seam of the ring
//
// Both pass through the samples, so d = 0 is the sample just written (T. I. Laakso et al., "Splitting the
// unit delay", IEEE Signal Processing Magazine 13(1), 1996). d runs from 0 to size - 1 samples; beyond it is
// the caller's error: one log line of each kind for each object, and the nearest legal delay.
//
// Each head has its own write index; heads on one buffer read each other's samples. write, read and process
// belong to one thread, as a rule the audio thread.
#pragma once

#include <memory>

#include "math/CircularBuffer.h"

class FractionalDelay {
public:
    static constexpr int kLinear = 0;
    static constexpr int kThirdOrder = 1;

    explicit FractionalDelay(std::shared_ptr<CircularBuffer<float>> buffer, int interpolation = kLinear);
    // With a buffer of its own that reads 0 to maxDelaySamples.
    explicit FractionalDelay(int maxDelaySamples, int interpolation = kLinear);

    // kLinear or kThirdOrder; anything else is a warning in the log and linear. Not while the head runs.
    void setInterpolation(int kind);
    int interpolation() const { return interpolation_; }

    void write(float sample);
    // Delays in double precision: a float has 1/128 of a sample left beyond 65536.
    float read(double delaySamples);
    // Writes, then reads.
    float process(float sample, double delaySamples);

    // The delay of the last read, after its limits.
    float delaySamples() const { return delaySamples_; }
    const std::shared_ptr<CircularBuffer<float>>& buffer() const { return buffer_; }

    // Zeroes the buffer, for all heads on it.
    void clear() { buffer_->clear(); }

private:
    using ReadRoutine = float (FractionalDelay::*)(int index, float fraction) const;

    double limited(double delaySamples);
    float readLinear(int index, float fraction) const;
    float readThirdOrder(int index, float fraction) const;

    float delaySamples_ = 0.0f;
    std::shared_ptr<CircularBuffer<float>> buffer_;
    int writeIndex_ = 0;
    int interpolation_ = kLinear;
    ReadRoutine readRoutine_ = &FractionalDelay::readLinear;
    bool hasLoggedNegative_ = false;
    bool hasLoggedTooLong_ = false;
};
