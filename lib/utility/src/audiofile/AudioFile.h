// What a parsed sound file is, and why one is refused.
#pragma once

#include <vector>

struct AudioFile {
    std::vector<std::vector<double>> channels;  // -1 to 1, all of one length
    int sampleRateHz = 0;
    int bitDepth = 0;
};

namespace audiofile {

constexpr const char* kUnsupportedDepth = "ERROR: this file has a bit depth that is not 8, 16, 24 or 32 bits";
constexpr const char* kMoreThanTheFile =
    "ERROR: read file error as the metadata indicates more samples than there are in the file data";

}  // namespace audiofile
