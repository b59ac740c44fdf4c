// The bright capacitor across a volume pot: a high shelf that lifts the treble more the lower the knob
// stands.
//
// Low end 0 dB; high gain (dB) and corner (Hz) come from tables over the volume knob, ten points each for the
// panel numbers 1 to 10. One class for each channel carries its tables.
//
// Threads: setVolume on the control side, process on the audio thread.
#pragma once

#include "math/FirstOrderShelf.h"
#include "math/TaperPiecewiseLinear.h"

class ArvelReverb65VolumeBrightCap : public FirstOrderShelf {
public:
    struct Tables {
        float highGainDb[10];
        float cornerHz[10];
    };

    // Follows the volume knob, 0 to 1.
    void setVolume(float knob);

protected:
    // tag: the derived class, for the log.
    ArvelReverb65VolumeBrightCap(const char* tag, int length, float sampleRate, const Tables& tables);
    ~ArvelReverb65VolumeBrightCap() = default;

private:
    const char* const tag_;
    const TaperPiecewiseLinear highGainDb_;
    const TaperPiecewiseLinear cornerHz_;
};

class ArvelReverb65NormalPreampVolumeBrightCap final : public ArvelReverb65VolumeBrightCap {
public:
    ArvelReverb65NormalPreampVolumeBrightCap(int length, float sampleRate);
};

class ArvelReverb65VibratoPreampVolumeBrightCap final : public ArvelReverb65VolumeBrightCap {
public:
    ArvelReverb65VibratoPreampVolumeBrightCap(int length, float sampleRate);
};
