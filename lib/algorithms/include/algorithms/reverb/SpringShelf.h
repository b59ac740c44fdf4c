// A first-order shelf with a gain at each end, by a mirror of the unit circle.
//
//   A = 10^(low / 20),  B = 10^(high / 20),  x = (B^2 - A^2) / (B^2 + A^2 - 2 A B)
//   p = x - sign(x) sqrt(x^2 - 1),  sign(0) = 0
//   t = sin(pi f / (2 fs) - pi / 4) / sin(pi f / (2 fs) + pi / 4),  n = 1 / (1 + p t)
//   u = (A + B + p (A - B)) / 2,  v = (A - B + p (A + B)) / 2
//   b0 = (u + v t) n,  b1 = (v + u t) n,  a1 = (p + t) n,  y = b0 x + b1 x1 - a1 y1
//
// It is A at DC and B at half the rate; with A = B a plain gain, where the formula would divide by 0. Against
// FirstOrderShelf its middle lies elsewhere.
#pragma once

namespace rvb {

class SpringShelf {
public:
    // Gains in dB, frequency and rate in Hz.
    SpringShelf(float sampleRate, float lowDb, float highDb, float frequencyHz);

    // n samples in place. Audio thread.
    void process(float* buffer, int n);

    // Zeroes the state.
    void clear() { x1_ = y1_ = 0.0f; }

private:
    void design();

    const float sampleRate_;
    const float lowDb_;
    const float highDb_;
    const float frequencyHz_;
    float b0_ = 1.0f;
    float b1_ = 0.0f;
    float a1_ = 0.0f;
    float x1_ = 0.0f;
    float y1_ = 0.0f;
};

}  // namespace rvb
