// A tone stack by table: the five values of a BqTonestack, measured at 5 x 5 x 5 settings of three controls
// and mixed tri-linearly between them.
//
// Table: 625 floats, gl, gm, gh, f1, f2 for each point (linear gains, corners in Hz); the third control has
// the fastest index. It is not copied.
//
// An amp's stack derives from this class and adds its table.
#pragma once

#include "math/BqTonestack.h"

class ThreeDliBiquad {
public:
    // first, second, third: the controls at the start, 0 to 1.
    ThreeDliBiquad(const float* table, float sampleRate, float first = 0.5f, float second = 0.5f,
                   float third = 0.5f);

    // Control side. control: 0 to 2; value is limited to 0 to 1; isInit as in BqTonestack::set.
    void set(int control, float value, bool isInit);

    // Audio thread. n samples in place.
    void process(float* buffer, int n) { tonestack_.process(buffer, n); }

    // As BqTonestack::clear.
    void clear() { tonestack_.clear(); }

    // The five values of the present settings.
    const BqTonestackValues& values() const { return values_; }

private:
    const float* const table_;
    float controls_[3];
    BqTonestackValues values_;
    BqTonestack tonestack_;
};
