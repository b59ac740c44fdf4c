// The impulse response of the reverb tank, held once for the whole process: the samples' spectra are made at
// the first use and shared by every tank and every convolution reverb from then on.
//
// Control threads; a lock guards the one copy. Loading takes the disk and a few hundred transforms, so
// programs ask for it once at their start.
#pragma once

#include <memory>
#include <string>

#include "math/PreparedResponse.h"

class SpringTankResponse {
public:
    // Samples of the response; a longer file is cut.
    static constexpr int kSamples = 551250;
    // The partitions that it is prepared for: block of the middle, head.
    static constexpr int kSmallBlock = 128;
    static constexpr int kHeadLength = 2048;

    // Where the WAV file lies, absolute; a path of the amplifier finds its place on this machine. Drops what
    // was loaded from another file, for those who ask later.
    static void setFile(const std::string& path);

    // Loads at the first call. Null, after an error in the log, when no file was set or it cannot be read at
    // this rate (Hz); the next call tries again.
    static std::shared_ptr<const PreparedResponse> get(float sampleRate);
};
