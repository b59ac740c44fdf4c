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

    // The file that ships with the amplifier.
    static constexpr const char* kFile = "/home/root/tank/SpringTank.wav";

    // Takes another WAV file in its place: a path of the amplifier, which finds its place on this machine, or
    // any other absolute one; an empty path is no response. Drops what was loaded before, for those who ask
    // later.
    static void setFile(const std::string& path);

    // Loads at the first call. Null, after an error in the log, when the file cannot be read at this rate
    // (Hz); the next call tries again.
    static std::shared_ptr<const PreparedResponse> get(float sampleRate);
};
