#include <cmath>
#include <limits>

#include "ReaderFixture.h"

namespace {

using namespace soundfile;
using WavFileTest = ReaderFixture;
using Floats = std::vector<float>;

constexpr const char* kNotWav = "Error ERROR: this doesn't seem to be a valid .WAV file";
constexpr const char* kFormat =
    "Error ERROR: this .WAV file is encoded in a format that this library does not support at present";
constexpr const char* kChannels =
    "Error ERROR: this WAV file seems to be an invalid number of channels (or corrupted?)";
constexpr const char* kInconsistent =
    "Error ERROR: the header data in this WAV file seems to be inconsistent";
constexpr const char* kDepth = "Error ERROR: this file has a bit depth that is not 8, 16, 24 or 32 bits";
constexpr const char* kLength =
    "Error ERROR: read file error as the metadata indicates more samples than there are in the file data";

Bytes f32(float value) {
    return le(std::bit_cast<std::uint32_t>(value), 4);
}

TEST_F(WavFileTest, EightBitSamplesAreUnsignedAbout128) {
    EXPECT_TRUE(load(Wav{.bits = 8, .data = Bytes("\x00\x80\xC0\xFF", 4)}.bytes()));
    EXPECT_EQ(samples(), (Floats{-1.0f, 0.0f, 0.5f, 127.0f / 128.0f}));
    EXPECT_EQ(reader.getBitDepth(), 8);
}

TEST_F(WavFileTest, SixteenBitSamplesAreSignedLittleEndian) {
    EXPECT_TRUE(load(Wav{.data = le(0x8000, 2) + le(0xFFFF, 2) + le(0x4000, 2)}.bytes()));
    EXPECT_EQ(samples(), (Floats{-1.0f, -1.0f / 32768.0f, 0.5f}));
    EXPECT_EQ(reader.getBitDepth(), 16);
}

TEST_F(WavFileTest, TwentyFourBitSamplesAreSignedLittleEndian) {
    EXPECT_TRUE(load(Wav{.bits = 24, .data = le(0x800000, 3) + le(0xFFFFFF, 3) + le(0x200000, 3)}.bytes()));
    EXPECT_EQ(samples(), (Floats{-1.0f, -1.0f / 8388608.0f, 0.25f}));
    EXPECT_EQ(reader.getBitDepth(), 24);
}

TEST_F(WavFileTest, ThirtyTwoBitSamplesAreSignedLittleEndian) {
    EXPECT_TRUE(load(Wav{.bits = 32, .data = le(0x80000000, 4) + le(0x40000000, 4)}.bytes()));
    EXPECT_EQ(samples(), (Floats{-1.0f, 0.5f}));
    EXPECT_EQ(reader.getBitDepth(), 32);
}

TEST_F(WavFileTest, FloatsAreTakenAsTheyAreUpToFullScale) {
    const float infinity = std::numeric_limits<float>::infinity();
    const Bytes data = f32(0.3f) + f32(-1.5f) + f32(infinity) + f32(std::nanf(""));
    EXPECT_TRUE(load(Wav{.tag = 3, .bits = 32, .data = data}.bytes()));
    EXPECT_EQ(samples(), (Floats{0.3f, -1.0f, 1.0f, 0.0f}));
}

TEST_F(WavFileTest, AnExtensibleHeaderSaysItsEncodingInItsSubFormat) {
    EXPECT_TRUE(load(Wav{.tag = 0xFFFE, .bits = 24, .subFormat = 1, .data = le(0x400000, 3)}.bytes()));
    EXPECT_EQ(samples(), Floats{0.5f});
    EXPECT_TRUE(load(Wav{.tag = 0xFFFE, .bits = 32, .subFormat = 3, .data = f32(0.75f)}.bytes()));
    EXPECT_EQ(samples(), Floats{0.75f});
    expectRefused(Wav{.tag = 0xFFFE, .bits = 8, .subFormat = 6}.bytes(), kFormat);
    const Bytes cut = Wav{.tag = 0xFFFE, .bits = 16}.format().substr(0, 24);
    expectRefused(Wav::riff(chunkLe("fmt ", cut) + chunkLe("data", "")), kFormat);
}

TEST_F(WavFileTest, AStereoFileContributesItsFirstChannel) {
    EXPECT_TRUE(
        load(Wav{.channels = 2, .data = le(0x2000, 2) + le(0x7FFF, 2) + le(0x4000, 2) + le(1, 2)}.bytes()));
    EXPECT_EQ(reader.getNumChannels(), 2);
    EXPECT_EQ(samples(), (Floats{0.25f, 0.5f}));
}

TEST_F(WavFileTest, ChunksStandInAnyOrderAndOddOnesArePadded) {
    const Wav wav{.data = le(0x4000, 2)};
    const Bytes chunks = chunkLe("LIST", "odd") + chunkLe("data", wav.data) + chunkLe("x", "y") +
                         chunkLe("fmt ", wav.format());
    EXPECT_TRUE(
        load(Wav::riff(chunkLe("junk", "1") + chunkLe("data", wav.data) + chunkLe("fmt ", wav.format()))));
    EXPECT_EQ(samples(), Floats{0.5f});
    // An id of one character shifts every chunk behind it: the format is not found.
    expectRefused(Wav::riff(chunks), kNotWav);
}

TEST_F(WavFileTest, AnIncompleteLastFrameIsLeftOut) {
    EXPECT_TRUE(load(Wav{.channels = 2, .data = le(0x4000, 2) + le(0, 2) + le(0x2000, 2)}.bytes()));
    EXPECT_EQ(samples(), Floats{0.5f});
}

TEST_F(WavFileTest, AFileWithoutSamplesIsLoadedEmpty) {
    EXPECT_TRUE(load(Wav{}.bytes()));
    EXPECT_EQ(samples(), Floats{});
}

TEST_F(WavFileTest, WithoutItsNameOrAnyOfItsTwoChunksItIsNoWav) {
    const Wav wav{.data = le(1, 2)};
    expectRefused("RIFF" + le(4, 4) + "AVI " + chunkLe("fmt ", wav.format()) + chunkLe("data", wav.data),
                  kNotWav);
    expectRefused("RIFF", kNotWav);
    expectRefused("RIFF" + le(4, 4) + "WAV", kNotWav);
    expectRefused(Wav::riff(""), kNotWav);
    expectRefused(Wav::riff(chunkLe("data", wav.data)), kNotWav);
    expectRefused(Wav::riff(chunkLe("fmt ", wav.format())), kNotWav);
    expectRefused(Wav::riff(chunkLe("fmt ", wav.format().substr(0, 14)) + chunkLe("data", wav.data)),
                  kNotWav);
    expectRefused(Wav::riff(chunkLe("data", wav.data) + chunkLe("fmt ", wav.format().substr(0, 9), 16)),
                  kNotWav);
}

TEST_F(WavFileTest, AChunkThatClaimsMoreThanTheFileHidesWhatFollows) {
    const Wav wav{.data = le(1, 2)};
    for (const std::int64_t size : {0x1000LL, 0x7FFFFFFFLL, 0xFFFFFFFFLL}) {
        const Bytes chunks =
            chunkLe("LIST", "abcd", size) + chunkLe("fmt ", wav.format()) + chunkLe("data", wav.data);
        expectRefused(Wav::riff(chunks), kNotWav);
    }
}

TEST_F(WavFileTest, CompressedEncodingsAreRefused) {
    for (const unsigned tag : {0u, 2u, 6u, 7u, 0x55u, 0xFFFFu})
        expectRefused(Wav{.tag = tag, .data = "ab"}.bytes(), kFormat);
}

TEST_F(WavFileTest, MoreThanTwoChannelsAndNoneAreRefused) {
    for (const unsigned channels : {0u, 3u, 6u, 65535u})
        expectRefused(Wav{.channels = channels, .blockAlign = 2, .data = "abcdef"}.bytes(), kChannels);
}

TEST_F(WavFileTest, FieldsThatContradictEachOtherAreRefused) {
    expectRefused(Wav{.blockAlign = 0, .data = "ab"}.bytes(), kInconsistent);
    expectRefused(Wav{.blockAlign = 4, .data = "abcd"}.bytes(), kInconsistent);
    expectRefused(Wav{.byteRate = 44100, .data = "ab"}.bytes(), kInconsistent);
    // 2^32 bytes a second do not fit the field.
    expectRefused(Wav{.rateHz = 0x80000000u, .byteRate = 0, .data = "ab"}.bytes(), kInconsistent);
    expectRefused(Wav{.bits = 0, .data = "ab"}.bytes(), kDepth);
    expectRefused(Wav{.tag = 3, .bits = 16, .data = "ab"}.bytes(), kInconsistent);
}

TEST_F(WavFileTest, OtherDepthsAreRefused) {
    for (const unsigned bits : {1u, 12u, 20u, 40u, 64u})
        expectRefused(Wav{.bits = bits, .data = "abcdefgh"}.bytes(), kDepth);
}

TEST_F(WavFileTest, DataBeyondTheEndOfTheFileIsRefused) {
    const Wav wav;
    for (const std::int64_t size : {5LL, 0x7FFFFFFFLL, 0xFFFFFFFELL, 0xFFFFFFFFLL})
        expectRefused(Wav::riff(chunkLe("fmt ", wav.format()) + chunkLe("data", "abcd", size)), kLength);
}

}  // namespace
