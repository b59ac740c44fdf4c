#include "SampleDecoding.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace audiofile {

namespace {

// The word's bits, the most significant byte at the top of the 32.
std::uint32_t topAligned(const unsigned char* bytes, int count, bool isBigEndian) {
    std::uint32_t word = 0;
    for (int i = 0; i < count; ++i) {
        const unsigned char byte = bytes[isBigEndian ? count - 1 - i : i];
        word = word >> 8 | static_cast<std::uint32_t>(byte) << 24;
    }
    return word;
}

double decode(const unsigned char* bytes, int count, SampleFormat format) {
    switch (format) {
        case SampleFormat::UnsignedByte:
            return (bytes[0] - 128) / 128.0;
        case SampleFormat::SignedLittleEndian:
        case SampleFormat::SignedBigEndian: {
            const bool isBigEndian = format == SampleFormat::SignedBigEndian;
            return static_cast<std::int32_t>(topAligned(bytes, count, isBigEndian)) / 2147483648.0;
        }
        case SampleFormat::FloatLittleEndian:
        case SampleFormat::FloatBigEndian: {
            const bool isBigEndian = format == SampleFormat::FloatBigEndian;
            const double value = std::bit_cast<float>(topAligned(bytes, count, isBigEndian));
            return std::isnan(value) ? 0.0 : std::clamp(value, -1.0, 1.0);
        }
    }
    return 0.0;
}

}  // namespace

std::vector<std::vector<double>> decodeSamples(const unsigned char* bytes, std::uint64_t frames,
                                               int numChannels, int bytesPerSample, SampleFormat format) {
    std::vector<std::vector<double>> channels(static_cast<std::size_t>(numChannels),
                                              std::vector<double>(static_cast<std::size_t>(frames)));
    for (std::size_t frame = 0; frame < frames; ++frame) {
        for (std::vector<double>& channel : channels) {
            channel[frame] = decode(bytes, bytesPerSample, format);
            bytes += bytesPerSample;
        }
    }
    return channels;
}

}  // namespace audiofile
