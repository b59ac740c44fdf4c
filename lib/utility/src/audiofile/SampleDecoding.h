// Interleaved sample words to doubles between -1 and 1.
//
// Integers of n bits are divided by 2^(n-1). A float beyond full scale is limited to it, and one that is not
// a number becomes 0, so that no response can carry either into the signal.
#pragma once

#include <cstdint>
#include <vector>

namespace audiofile {

enum class SampleFormat {
    UnsignedByte,
    SignedLittleEndian,
    SignedBigEndian,
    FloatLittleEndian,
    FloatBigEndian
};

constexpr bool isSupportedDepth(int bits) {
    return bits == 8 || bits == 16 || bits == 24 || bits == 32;
}

// bytes: frames x numChannels words of bytesPerSample (1 to 4; 1 for UnsignedByte, 4 for floats).
std::vector<std::vector<double>> decodeSamples(const unsigned char* bytes, std::uint64_t frames,
                                               int numChannels, int bytesPerSample, SampleFormat format);

}  // namespace audiofile
