// The bright switches of the two channels: each fades its channel's bright capacitor in and out over 20 ms.
// The capacitor follows the volume knob whether the switch is on or off.
#pragma once

#include "algorithms/amp/ArvelReverb65VolumeBrightCap.h"
#include "math/PushbuttonFilter.h"

class ArvelReverb65NormalPreampBrightSwitchFilter final : public PushbuttonFilter {
public:
    class Filter final : public IFilter {
    public:
        Filter(int length, float sampleRate) : brightCap(length, sampleRate) {}
        void process(float* buffer) override { brightCap.process(buffer); }

        ArvelReverb65NormalPreampVolumeBrightCap brightCap;
    };

    // length: samples in a block, at sampleRate (Hz).
    ArvelReverb65NormalPreampBrightSwitchFilter(int length, float sampleRate)
        : PushbuttonFilter(length, sampleRate, &filter_), filter_(length, sampleRate) {}

    ArvelReverb65VolumeBrightCap& brightCap() { return filter_.brightCap; }

private:
    Filter filter_;
};

class ArvelReverb65VibratoPreampBrightSwitchFilter final : public PushbuttonFilter {
public:
    class Filter final : public IFilter {
    public:
        Filter(int length, float sampleRate) : brightCap(length, sampleRate) {}
        void process(float* buffer) override { brightCap.process(buffer); }

        ArvelReverb65VibratoPreampVolumeBrightCap brightCap;
    };

    // length: samples in a block, at sampleRate (Hz).
    ArvelReverb65VibratoPreampBrightSwitchFilter(int length, float sampleRate)
        : PushbuttonFilter(length, sampleRate, &filter_), filter_(length, sampleRate) {}

    ArvelReverb65VolumeBrightCap& brightCap() { return filter_.brightCap; }

private:
    Filter filter_;
};
