#include "WavFile.h"

#include "Chunk.h"
#include "SampleDecoding.h"

namespace audiofile {

namespace {

constexpr const char* kNotWav = "ERROR: this doesn't seem to be a valid .WAV file";
constexpr const char* kUnsupportedFormat =
    "ERROR: this .WAV file is encoded in a format that this library does not support at present";
constexpr const char* kBadChannels =
    "ERROR: this WAV file seems to be an invalid number of channels (or corrupted?)";
constexpr const char* kInconsistentHeader =
    "ERROR: the header data in this WAV file seems to be inconsistent";

constexpr std::uint16_t kPcm = 1;
constexpr std::uint16_t kIeeeFloat = 3;
constexpr std::uint16_t kExtensible = 0xFFFE;

constexpr std::uint64_t kPlainFormatBytes = 16;
constexpr std::uint64_t kExtensibleFormatBytes = 40;
// Of the sub-format's 128-bit name, whose first two bytes are a format tag.
constexpr std::uint64_t kSubFormatOffset = 24;
constexpr int kFloatBits = 32;

// The "fmt " chunk, field by field.
struct Format {
    std::uint16_t tag;
    std::uint16_t channels;
    std::uint32_t sampleRateHz;
    std::uint32_t byteRate;
    std::uint16_t blockAlign;
    std::uint16_t bitDepth;
    // A format tag again: the tag itself, the sub-format's for an extensible header, 0 where that is missing.
    std::uint16_t encoding;
};

bool readFormat(ByteCursor cursor, const Chunk& chunk, Format& format) {
    if (chunk.size < kPlainFormatBytes || !cursor.seek(chunk.begin)) return false;
    format.tag = cursor.readU16Le();
    format.channels = cursor.readU16Le();
    format.sampleRateHz = cursor.readU32Le();
    format.byteRate = cursor.readU32Le();
    format.blockAlign = cursor.readU16Le();
    format.bitDepth = cursor.readU16Le();
    if (cursor.isOverrun()) return false;
    format.encoding = format.tag;
    if (format.tag == kExtensible) {
        const bool isWhole =
            chunk.size >= kExtensibleFormatBytes && cursor.seek(chunk.begin + kSubFormatOffset);
        format.encoding = isWhole ? cursor.readU16Le() : std::uint16_t{0};
    }
    return true;
}

const char* check(const Format& format) {
    if (format.encoding != kPcm && format.encoding != kIeeeFloat) return kUnsupportedFormat;
    if (format.channels != 1 && format.channels != 2) return kBadChannels;
    const unsigned bytesPerSample = (format.bitDepth + 7u) / 8u;
    const std::uint64_t byteRate = static_cast<std::uint64_t>(format.sampleRateHz) * format.blockAlign;
    if (format.blockAlign != format.channels * bytesPerSample || format.byteRate != byteRate)
        return kInconsistentHeader;
    if (!isSupportedDepth(format.bitDepth)) return kUnsupportedDepth;
    if (format.encoding == kIeeeFloat && format.bitDepth != kFloatBits) return kInconsistentHeader;
    return nullptr;
}

SampleFormat sampleFormat(const Format& format) {
    if (format.encoding == kIeeeFloat) return SampleFormat::FloatLittleEndian;
    return format.bitDepth == 8 ? SampleFormat::UnsignedByte : SampleFormat::SignedLittleEndian;
}

}  // namespace

const char* parseWav(ByteCursor bytes, AudioFile& result) {
    ByteCursor cursor = bytes;
    cursor.seek(8);
    if (cursor.readId() != "WAVE") return kNotWav;
    const std::optional<Chunk> formatChunk = findChunk(bytes, "fmt ", std::endian::little);
    const std::optional<Chunk> dataChunk = findChunk(bytes, "data", std::endian::little);
    Format format{};
    if (!formatChunk || !dataChunk || !readFormat(bytes, *formatChunk, format)) return kNotWav;
    if (const char* const refusal = check(format)) return refusal;

    cursor.seek(dataChunk->begin);
    const unsigned char* const data = cursor.take(dataChunk->size);
    if (!data) return kMoreThanTheFile;
    result.channels = decodeSamples(data, dataChunk->size / format.blockAlign, format.channels,
                                    format.bitDepth / 8, sampleFormat(format));
    result.sampleRateHz = static_cast<int>(format.sampleRateHz);
    result.bitDepth = format.bitDepth;
    return nullptr;
}

}  // namespace audiofile
