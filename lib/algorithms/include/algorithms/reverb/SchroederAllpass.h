// A delay with a path around it, one pass of a diffuser (M. R. Schroeder, "Natural sounding artificial
// reverberation", J. Audio Eng. Soc. 10(3), 1962).
//
//   v = line[k],   y = v + x forward,   line[k] = x + v back
//
// k runs around the line's length, which is the delay. It is an allpass when forward = -back (and the loop
// takes y in place of v); with other gains it is a comb that echoes in both polarities.
#pragma once

#include <vector>

namespace rvb {

class SchroederAllpass {
public:
    // lengthSamples: at least 1.
    SchroederAllpass(int lengthSamples, float forwardGain, float backGain);

    // n samples in place. Audio thread.
    void process(float* buffer, int n);

    int length() const { return static_cast<int>(line_.size()); }

    // Zeroes the line.
    void clear();

private:
    std::vector<float> line_;
    int k_ = 0;
    const float forwardGain_;
    const float backGain_;
};

}  // namespace rvb
