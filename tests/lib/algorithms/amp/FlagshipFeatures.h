// What the two-channel reverb amp makes of a sine: level and harmonics at the power amp's output, in volts,
// over input levels and knob settings. The golden table holds these features; the laws that hold among them
// are tests of their own.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "HarmonicProbe.h"
#include "algorithms/amp/ArvelReverb65.h"

namespace flagship {

constexpr int kBlock = 32;
constexpr float kSampleRate = 44100.0f;
constexpr int kWindow = 4096;  // 93 ms
constexpr int k1kHz = 93;      // whole periods in a window, an odd number so that no two samples repeat
constexpr int kHighestHarmonic = 7;

struct Knobs {
    const char* name;
    float volume, bass, mid, treble;
    bool bright;
};

constexpr float kPanel5 = 4.0f / 9.0f;

constexpr Knobs kKnobs[] = {
    {"panel5", kPanel5, kPanel5, kPanel5, kPanel5, false},
    {"panel5-bright", kPanel5, kPanel5, kPanel5, kPanel5, true},
    {"quiet-bright", 2.0f / 9.0f, kPanel5, kPanel5, kPanel5, true},
    {"full-volume", 1.0f, kPanel5, kPanel5, kPanel5, false},
    {"bass", kPanel5, 1.0f, 0.0f, 0.0f, false},
    {"treble", kPanel5, 0.0f, 0.0f, 1.0f, false},
    {"all-up", 1.0f, 1.0f, 1.0f, 1.0f, true},
};

struct Case {
    int channel;  // 0 normal, 1 vibrato
    const Knobs* knobs;
    int cyclesPerWindow;  // of kWindow samples
    double millivolts;    // peak at the jack
};

inline std::string nameOf(const Case& c) {
    char text[96];
    std::snprintf(text, sizeof text, "%s,%s,%.0f,%.0f", c.channel == 0 ? "normal" : "vibrato", c.knobs->name,
                  c.cyclesPerWindow * kSampleRate / kWindow, c.millivolts);
    return text;
}

inline Harmonics measure(const Case& c, bool withImpedanceCurve = false, int highest = kHighestHarmonic) {
    ArvelReverb65 amp(kBlock, kSampleRate, 1.0f, withImpedanceCurve);
    amp.setGain(c.knobs->volume, true);
    amp.setBass(c.knobs->bass, true);
    amp.setMid(c.knobs->mid, true);
    amp.setTreb(c.knobs->treble, true);
    amp.setBrightSw(c.knobs->bright, true);
    const auto process = [&](float* block) {
        float silent[kBlock] = {};
        float line[kBlock];
        float* const normal = c.channel == 0 ? block : silent;
        float* const vibrato = c.channel == 0 ? silent : block;
        amp.process(normal, vibrato, block, line);
        for (int n = 0; n < kBlock; ++n)
            block[n] *= ArvelReverb65::kFullPowerVolts;
    };
    return probe(process, c.millivolts * 1e-3, c.cyclesPerWindow, kWindow, 4, highest);
}

inline std::vector<Case> cases() {
    std::vector<Case> all;
    for (const int channel : {0, 1}) {
        for (const Knobs& knobs : kKnobs)
            for (const double millivolts : {10.0, 30.0, 100.0, 300.0})
                all.push_back({channel, &knobs, k1kHz, millivolts});
        for (const int cycles : {9, 37, 279})  // 97, 398 and 3004 Hz
            for (const double millivolts : {10.0, 100.0})
                all.push_back({channel, &kKnobs[0], cycles, millivolts});
    }
    return all;
}

}  // namespace flagship
