// The LFO of tremolos and phasers: four oscillators at one rate, one of which bends another's phase.
//
//   duty sine, offset 2 duty - 1 --> x 60, - 90 degrees --> phase offset of the main sine
//   out = mix * other + (1 - mix) * main,   other: triangle or sine, both from their lowest point
//
// At a duty of one half the bend holds the main sine near its middle for a sixth of the cycle, on its way up,
// and turns its phase back a little there: the value crosses the middle three times.
//
// The duty oscillator starts at +90 degrees and is moved by -45 + 90 dist. Amplitude and offset are those of
// main, triangle and sine; the duty oscillator always swings by 1.
//
// Audio thread.
#pragma once

#include "math/LfoSine.h"
#include "math/LfoTriangle.h"

class CompositeLfo {
public:
    // Starts at 100 Hz, amplitude 1, offset 0, duty and dist 0.5, mix 0, the sine as other.
    explicit CompositeLfo(float sampleRateHz);

    float tick();
    // The next count ticks.
    void tick(float* out, int count);

    void setRate(float hz);
    void setAmplitude(float amplitude);
    void setOffset(float offset);
    // 0 to 1: how long the main sine stays up.
    void setDuty(float duty);
    // 0 to 1: the second phase offset of the duty oscillator.
    void setDist(float dist);
    // 0 to 1: the share of the other oscillator.
    void setShapeMix(float mix) { shapeMix_ = mix; }
    void setTriangle(bool selected) { isTriangle_ = selected; }

    // All four at the start of their cycles.
    void reset();

private:
    LfoSine main_;
    LfoSine duty_;
    LfoTriangle triangle_;
    LfoSine sine_;
    float shapeMix_ = 0.0f;
    bool isTriangle_ = false;
};
