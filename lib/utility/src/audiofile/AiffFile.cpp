#include "AiffFile.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "Chunk.h"
#include "SampleDecoding.h"

namespace audiofile {

namespace {

constexpr const char* kNotAiff = "ERROR: this doesn't seem to be a valid AIFF file";
constexpr const char* kBadChannels =
    "ERROR: this AIFF file seems to be neither mono nor stereo (perhaps multi-track, or corrupted?)";
constexpr const char* kUnsupportedRate = "ERROR: this AIFF file has an unsupported sample rate";
constexpr const char* kBadMetadata = "ERROR: the metadatafor this file doesn't seem right";

constexpr std::array<int, 19> kSampleRatesHz = {8000,  11025, 12000, 16000,  22050, 24000, 32000,
                                                37800, 44056, 44100, 47250,  48000, 50000, 50400,
                                                64000, 88200, 96000, 176400, 192000};

constexpr std::uint64_t kCommonBytes = 18;
constexpr std::uint64_t kCompressedCommonBytes = 22;  // with AIFC's encoding behind it
constexpr std::uint64_t kSoundHeadBytes = 8;
constexpr int kFloatBits = 32;

// The "COMM" chunk, field by field.
struct Common {
    std::uint16_t channels;
    std::uint32_t frames;
    std::uint16_t bitDepth;
    double sampleRateHz;
    std::string_view encoding;
};

// IEEE 754 extended precision: sign and 15 exponent bits, then 64 bits of mantissa, its leading one included.
double readExtended(ByteCursor& cursor) {
    const std::uint16_t signAndExponent = cursor.readU16Be();
    const double mantissa = static_cast<double>(cursor.readU64Be());
    const double magnitude = std::ldexp(mantissa, (signAndExponent & 0x7FFF) - 16383 - 63);
    return signAndExponent & 0x8000 ? -magnitude : magnitude;
}

bool readCommon(ByteCursor cursor, const Chunk& chunk, bool isCompressedForm, Common& common) {
    if (chunk.size < (isCompressedForm ? kCompressedCommonBytes : kCommonBytes)) return false;
    cursor.seek(chunk.begin);
    common.channels = cursor.readU16Be();
    common.frames = cursor.readU32Be();
    common.bitDepth = cursor.readU16Be();
    common.sampleRateHz = readExtended(cursor);
    common.encoding = isCompressedForm ? cursor.readId() : "NONE";
    return !cursor.isOverrun();
}

// False for an encoding that is not linear samples of that depth.
bool findSampleFormat(const Common& common, SampleFormat& format) {
    if (common.encoding == "NONE" || common.encoding == "twos") {
        format = SampleFormat::SignedBigEndian;
        return true;
    }
    if (common.encoding == "sowt") {
        format = SampleFormat::SignedLittleEndian;
        return true;
    }
    format = SampleFormat::FloatBigEndian;
    return (common.encoding == "fl32" || common.encoding == "FL32") && common.bitDepth == kFloatBits;
}

const char* check(const Common& common) {
    if (common.channels != 1 && common.channels != 2) return kBadChannels;
    if (std::find(kSampleRatesHz.begin(), kSampleRatesHz.end(), common.sampleRateHz) == kSampleRatesHz.end())
        return kUnsupportedRate;
    if (!isSupportedDepth(common.bitDepth)) return kUnsupportedDepth;
    return nullptr;
}

// The sound data, or null with the reason.
const unsigned char* findSound(ByteCursor cursor, const Chunk& chunk, std::uint64_t soundBytes,
                               const char*& refusal) {
    cursor.seek(chunk.begin);
    const std::uint64_t offset = cursor.readU32Be();
    cursor.readU32Be();  // block size, of no meaning to a reader that keeps to the offset
    refusal = kBadMetadata;
    if (cursor.isOverrun() || chunk.size < kSoundHeadBytes + offset) return nullptr;
    const std::uint64_t payload = chunk.size - kSoundHeadBytes - offset;
    const bool isInFile = cursor.seek(cursor.position() + offset) && soundBytes <= cursor.remaining() &&
                          payload <= cursor.remaining();
    if (!isInFile) {
        refusal = kMoreThanTheFile;
        return nullptr;
    }
    return payload == soundBytes ? cursor.take(soundBytes) : nullptr;
}

}  // namespace

const char* parseAiff(ByteCursor bytes, AudioFile& result) {
    ByteCursor cursor = bytes;
    cursor.seek(8);
    const std::string_view form = cursor.readId();
    if (form != "AIFF" && form != "AIFC") return kNotAiff;
    const std::optional<Chunk> commonChunk = findChunk(bytes, "COMM", std::endian::big);
    const std::optional<Chunk> soundChunk = findChunk(bytes, "SSND", std::endian::big);
    if (!commonChunk || !soundChunk) return kNotAiff;
    Common common{};
    if (!readCommon(bytes, *commonChunk, form == "AIFC", common)) return kBadMetadata;
    if (const char* const refusal = check(common)) return refusal;
    SampleFormat format{};
    if (!findSampleFormat(common, format)) return kBadMetadata;

    const int bytesPerSample = common.bitDepth / 8;
    const std::uint64_t soundBytes =
        static_cast<std::uint64_t>(common.frames) * common.channels * static_cast<unsigned>(bytesPerSample);
    const char* refusal = nullptr;
    const unsigned char* const sound = findSound(bytes, *soundChunk, soundBytes, refusal);
    if (!sound) return refusal;
    result.channels = decodeSamples(sound, common.frames, common.channels, bytesPerSample, format);
    result.sampleRateHz = static_cast<int>(common.sampleRateHz);
    result.bitDepth = common.bitDepth;
    return nullptr;
}

}  // namespace audiofile
