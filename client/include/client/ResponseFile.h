// An impulse response on its way to the amplifier, judged as the amplifier will when it loads it: what is
// uploaded is stored whatever it is, and a file that cannot be loaded is silent only when it is to sound.
#pragma once

#include <optional>
#include <string>

#include "TarvekMessage.pb.h"

namespace tvk::client {

struct ResponseFile {
    // What the amplifier plays, and how much of it.
    static constexpr int kSampleRateHz = 44100;
    static constexpr int kSamplesUsed = 4096;

    // Reads and judges. name: the file's name without folder and extension when not given. Throws ClientError
    // (BadUse) that says what is wrong and what would fit.
    static ResponseFile load(const std::string& path, const std::optional<std::string>& name);

    // What the amplifier will leave out of it, in a sentence; empty when nothing.
    std::string leftOut() const;

    std::string name;
    int channels = 0;
    int bitDepth = 0;
    int samples = 0;        // in each channel
    TarvekMessage request;  // AddUserIR, at most kMaxMessageBytes
};

}  // namespace tvk::client
