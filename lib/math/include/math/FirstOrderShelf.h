// First-order shelf with a gain at each end.
//
//   gl = 10^(lowDb / 20),  gh = 10^(highDb / 20),  q = sqrt(gh / gl),  t = tan(pi cornerHz / sampleRate)
//   a1 = (q t - 1) / (q t + 1),  b0 = (q + t) sqrt(gl gh) / (q t + 1),  b1 = b0 (t/q - 1) / (t/q + 1)
//   y = b0 x + b1 lastInput - a1 lastOutput
//
// It is gl at DC, gh at half the rate, and their geometric mean at the corner: the bilinear transform of
// (s gh + wc sqrt(gl gh)) / (s + wc sqrt(gh / gl)).
#pragma once

#include "math/PublishedRecord.h"

class FirstOrderShelf {
public:
    // length: samples in a block. A corner at or above half the rate is truncated to sampleRate * 0.495, with
    // a warning.
    FirstOrderShelf(int length, float sampleRate, float lowGainDb, float highGainDb, float cornerHz);

    // Audio thread. One block in place.
    void process(float* buffer);

    // Control side, one thread at a time; the state stays, the coefficients change whole at the next block.
    void setHighGainDb(float highGainDb);
    void setCornerHz(float cornerHz);
    void setAllParameters(float lowGainDb, float highGainDb, float cornerHz);

    // Zeroes the state. Audio thread, or while it stands.
    void clear();

private:
    struct Coefficients {
        float a1;
        float b0;
        float b1;
    };
    Coefficients design() const;

    const int length_;
    const float sampleRate_;
    float lowGainDb_ = 0.0f;
    float highGainDb_ = 0.0f;
    float cornerHz_ = 0.0f;
    PublishedRecord<Coefficients> coefficients_;
    float lastInput_ = 0.0f;
    float lastOutput_ = 0.0f;
};
