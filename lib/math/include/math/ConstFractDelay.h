// A delay line with fixed taps and feedback.
//
//   out[n]  = sum over k of gain_k x(newest - d_k)      newest: the sample stored last, n - 1 here
//   line[n] = in[n] + feedback out[n]
//
// A block reads every tap before it stores a sample, so the way from in to out is d_k + 1 samples. Each tap's
// delay is split once, when it is set, into whole samples and the weights of a linear interpolation; reading
// costs no division, and as far as the shortest tap reaches back a block is computed in vectors.
//
// write, read and process belong to one thread; the setters to construction.
#pragma once

#include <vector>

class ConstFractDelay {
public:
    // maxDelaySamples: the longest tap, at least 1. tapCount taps start at delay 0, gain 1.
    ConstFractDelay(int maxDelaySamples, int tapCount);

    // delaySamples: 0 to the maximum. An index past the end, or another delay, is an error in the log and the
    // taps stay as they are.
    void setTap(int index, double delaySamples);
    // The tap's delay in samples; 0 for an index past the end, with an error in the log.
    float getTap(int index) const;
    void setTapGain(int index, float gain);
    void setFeedback(float feedback);

    void write(float sample);
    // One tap's sample without its gain; delay 0 is the sample just written.
    float read(int index) const;
    // count samples; in and out are apart.
    void process(const float* in, float* out, int count);

    // Zeroes the line.
    void clear();

private:
    struct Tap {
        int distance;       // from the write index back to the older of the two samples, in the line's turn
        float olderWeight;  // and 1 - olderWeight for the newer one
        float gain;
        float delaySamples;
        float olderGain;  // the weights with the gain
        float newerGain;
        const float* head;  // process's: the older sample of the first pair
    };

    static void weigh(Tap& tap);
    bool isTap(int index) const;
    int indexOf(const Tap& tap) const;
    int runLength(int wanted) const;

    int size_;
    // One sample more than the ring: its first, repeated, so that a pair of samples never wraps.
    std::vector<float> line_;
    std::vector<Tap> taps_;
    int maxDelaySamples_;
    float feedback_ = 0.0f;
    int writeIndex_ = 0;
};
