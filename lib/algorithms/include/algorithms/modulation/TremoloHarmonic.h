// A tremolo between two bands: while the low one swells the high one fades.
//
//   in --> 11 Hz high-pass = x --> low, high --> out
//
//   "6G4A"  low = LP 189 Hz of x              high = x - LP 916 Hz of x
//           out = ((0.5 + s a) low + (0.5 - s b) high) 2.7662      a = 1 - 0.6 d,   b = 0.99 - 0.59 d
//   "6G4"   low = LP 170 Hz of x              high = w - LP 760 Hz of w,   w = x + LP 80 Hz of x
//           out = ((0.5 + s a) low + (0.5 - t b) high) 2.018       a = 1 - 0.511 d, b = 0.55 - 0.11 d
//
// s is the LFO at half the intensity, t the same 5 + 5 d ms later, d = (speed - 1.75) / 6.75. Shape v sets
// the LFO's duty to 0.5 + 0.3 v and its mix to 1 - v. Controls glide with a time constant of two blocks. Each
// channel has its own filters, both have one LFO.
//
// Threads: setters from control threads, one at a time; process on the audio thread.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "algorithms/modulation/CompositeLfo.h"
#include "algorithms/modulation/ModulationDelay.h"
#include "math/BlockRamp.h"
#include "math/OnePoleHighPass.h"
#include "math/OnePoleLowPass.h"

class TremoloHarmonic {
public:
    // blockLength: the samples of every call, at sampleRateHz. Starts as "6G4A" at 1.75 Hz, intensity 0,
    // shape 0.5.
    TremoloHarmonic(int blockLength, float sampleRateHz);

    // One block; outputs may be the inputs.
    void process(const float* inLeft, const float* inRight, float* outLeft, float* outRight);

    // Hz, limited to 1.75 to 8.5. With init the value is there at once.
    void setSpeed(float hz, bool init);
    // 0 to 1, limited to that.
    void setIntensity(float intensity, bool init);
    // 0 to 1; beyond that an error in the log, and 0.5.
    void setShape(float shape, bool init);
    // "6G4" or "6G4A"; another name is an error in the log and "6G4A". The new path starts with clear
    // filters.
    void setMode(const std::string& name);

    // LFO at its start, filters and delay line clear, controls at their targets. Not while a block is
    // processed.
    void reset();

private:
    enum Mode { k6G4 = 0, k6G4A = 1 };

    struct Filters {
        Filters(Mode mode, float sampleRateHz);
        void reset();
        OnePoleLowPass low;
        OnePoleLowPass body;  // "6G4" only
        OnePoleLowPass high;
    };
    struct Channel {
        explicit Channel(float sampleRateHz);
        OnePoleHighPass input;
        Filters paths[2];
    };

    void followMode();
    void splitBands(Channel& channel, const float* in);

    const int blockLength_;
    const float sampleRate_;
    BlockRamp speed_;
    BlockRamp intensity_;  // the LFO's amplitude
    BlockRamp shape_;
    std::atomic<int> wantedMode_{k6G4A};
    Mode mode_ = k6G4A;
    CompositeLfo lfo_;
    ModulationDelay delay_;
    Channel left_;
    Channel right_;
    // Work arrays of a block.
    std::vector<float> lfoNow_;
    std::vector<float> lfoLater_;
    std::vector<float> low_;
    std::vector<float> high_;
    std::vector<float> filtered_;
};
