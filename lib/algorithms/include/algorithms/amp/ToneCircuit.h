// The passive tone network of the reverb amp family, solved from its circuit: one volume pot behind a
// treble, bass and middle stack, a filter of the fourth order.
//
//            250p                 250k treble
//   in --38.46k--+--||------------[ pot ]--> wiper --+-- 1M volume pot --> wiper --> out
//                |                   |                                     |
//                +--100k--+--||------+  100n                         10M || 165p
//                         |          |                                     |
//                         |        250k bass                              gnd
//                         +--||------+  47n
//                                    |
//                                   10k middle
//                                    |
//                                   gnd
//
// The transfer function's coefficients are polynomials in the four pot positions (nodal analysis); the
// bilinear transform s = k (1 - 1/z) / (1 + 1/z), k = 2 fs, makes a digital filter of them for every sample,
// so that knobs can move at audio rate without zipper noise.
//
// process works in place on any number of samples, in float, with double-precision coefficients and state.
// Coefficients come for a run of samples at once, since they do not depend on the signal, and only while a
// ramp moves: at rest the last ones are still in place, the same to the bit. Only the feedback is serial.
//
// Threads: setters from any control thread, process from the audio thread. Nothing allocates.
#pragma once

#include "math/OnePoleRamp.h"

// Terms of the analogue transfer function H(s) = (n1 s + n2 s^2 + n3 s^3) / (d0 + d1 s + ... + d4 s^4) at the
// pot positions bass, mid, treble, volume. n4 is zero. The scale common to all terms is arbitrary.
struct ToneCircuitPolynomials {
    double n1, n2, n3;
    double d0, d1, d2, d3, d4;
};

ToneCircuitPolynomials toneCircuitPolynomials(double bass, double mid, double treble, double volume);

class ToneCircuit {
public:
    explicit ToneCircuit(float sampleRateHz);

    // Pot positions, electrical, in (0, 1). isInit takes the value at once, without the 3.2 ms ramp.
    void setBass(float position, bool isInit) { set(bass_, position, isInit); }
    void setMid(float position, bool isInit) { set(mid_, position, isInit); }
    void setTreble(float position, bool isInit) { set(treble_, position, isInit); }
    void setVolume(float position, bool isInit) { set(volume_, position, isInit); }

    void process(float* buffer, int length);

    // Samples that get their coefficients in one go, one column each.
    static constexpr int kRun = 32;
    static constexpr int kOrder = 4;

    struct Run {
        // The pots, sample by sample.
        struct Positions {
            alignas(64) float bass[kRun];
            alignas(64) float mid[kRun];
            alignas(64) float treble[kRun];
            alignas(64) float volume[kRun];
        };
        // y[n] = f0 x[n] + ... + f4 x[n-4] - g1 y[n-1] - ... - g4 y[n-4], one row a coefficient (g1 in row
        // 0); the division by a0 is done here, outside the recursion.
        struct Coefficients {
            alignas(64) double f[kOrder + 1][kRun];
            alignas(64) double g[kOrder][kRun];
        };
        Positions positions;
        Coefficients coefficients;
    };

private:
    static void set(OnePoleRamp& ramp, float position, bool isInit) {
        ramp.setTarget(position);
        if (isInit) ramp.snap(position);
    }

    void processRun(float* buffer, int length);
    void moveRamps(int length);

    OnePoleRamp bass_;
    OnePoleRamp mid_;
    OnePoleRamp treble_;
    OnePoleRamp volume_;
    const double k_;
    Run run_{};
    // The columns all hold the values that the ramps rest at.
    bool isDesignedAtRest_ = false;
    // The first four are the last samples of the run before, oldest first.
    alignas(64) double inputs_[kOrder + kRun] = {};
    // Newest first.
    double lastOutputs_[kOrder] = {};
};
