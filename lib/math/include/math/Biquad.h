// The direct-form II section that all second-order filters run on.
//
//   w = x - a1 w1 - a2 w2,   y = b0 w + b1 w1 + b2 w2,   w2 = w1,   w1 = w
//
// The recursion is one multiplication and one subtraction deep per sample: a2 w2 is known a sample early and
// is taken off first.
#pragma once

#include "math/BiquadDesign.h"
#include "math/PublishedRecord.h"

template <typename T>
struct BiquadState {
    T w1{};
    T w2{};
};

// n samples in place; works on copies of the state and stores them back.
template <typename T>
inline void processBiquad(const BiquadCoefficients<T>& coefficients, BiquadState<T>& state, T* buffer,
                          int n) {
    const BiquadCoefficients<T> c = coefficients;
    T w1 = state.w1;
    T w2 = state.w2;
    for (int i = 0; i < n; ++i) {
        const T w = (buffer[i] - c.a2 * w2) - c.a1 * w1;
        buffer[i] = c.b0 * w + (c.b1 * w1 + c.b2 * w2);
        w2 = w1;
        w1 = w;
    }
    state = {w1, w2};
}

// A section whose coefficients a control thread may replace while the audio thread runs it. New coefficients
// hold from the next block (or single sample) on; the state stays as it is.
//
// Threads: process and clear on the audio thread, or while it stands; the derived classes' setters on the
// control side, one thread at a time.
template <typename T>
class Biquad {
public:
    T process(T x) {
        processBiquad(coefficients_.read(), state_, &x, 1);
        return x;
    }

    // n samples in place.
    void process(T* buffer, int n) { processBiquad(coefficients_.read(), state_, buffer, n); }

    // Zeroes the state, and only it.
    void clear() { state_ = {}; }

    // The coefficients designed last. Control side.
    const BiquadCoefficients<T>& coefficients() const { return coefficients_.latest(); }

    const BiquadState<T>& state() const { return state_; }

protected:
    explicit Biquad(const BiquadCoefficients<T>& coefficients) : coefficients_(coefficients) {}
    ~Biquad() = default;

    void publish(const BiquadCoefficients<T>& coefficients) { coefficients_.publish(coefficients); }

private:
    BiquadState<T> state_;
    PublishedRecord<BiquadCoefficients<T>> coefficients_;
};
