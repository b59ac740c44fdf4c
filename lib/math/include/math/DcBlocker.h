// A one-pole high-pass whose output is taken before its state moves.
//
//   y = x - s,   s <- s + (x - s) c,   c = 1 - exp(-2 pi freqHz / sampleRate),   s = 0 at the start
//
// It runs as y[n] = x[n] - x[n-1] + p y[n-1] with p = 1 - c, the zero at DC in front of the pole (J. O.
// Smith, "Introduction to Digital Filters", 2007, DC blocker). Against OnePoleHighPass, which takes its
// output after the state has moved, it is higher by 1 / p: the first sample passes whole.
#pragma once

#include <cmath>

#include "math/OnePoleScan.h"

class DcBlocker {
public:
    // freqHz: the corner, above 0 and well below half of sampleRate (Hz).
    DcBlocker(float freqHz, float sampleRate)
        : scan_(static_cast<float>(std::exp(-6.283185307179586 * freqHz / sampleRate))) {}

    // n samples in place. Audio thread.
    void process(float* buffer, int n) {
        const OnePoleScan scan = scan_;
        float lastInput = lastInput_;
        float lastOutput = lastOutput_;
        int i = 0;
        for (; i + 4 <= n; i += 4) {
            const OnePoleScan::Lanes x = OnePoleScan::load(buffer + i);
            const OnePoleScan::Lanes y = scan.step(x - OnePoleScan::delayed(x, lastInput), lastOutput);
            OnePoleScan::store(buffer + i, y);
            lastInput = x[3];
            lastOutput = y[3];
        }
        for (; i < n; ++i) {
            lastOutput = buffer[i] - lastInput + scan.pole() * lastOutput;
            lastInput = buffer[i];
            buffer[i] = lastOutput;
        }
        lastInput_ = lastInput;
        lastOutput_ = lastOutput;
    }

    // Back to silence.
    void reset() { lastInput_ = lastOutput_ = 0.0f; }

private:
    OnePoleScan scan_;
    float lastInput_ = 0.0f;
    float lastOutput_ = 0.0f;
};
