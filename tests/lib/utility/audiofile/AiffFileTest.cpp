#include "ReaderFixture.h"

namespace {

using namespace soundfile;
using AiffFileTest = ReaderFixture;
using Floats = std::vector<float>;

constexpr const char* kNotAiff = "Error ERROR: this doesn't seem to be a valid AIFF file";
constexpr const char* kChannels =
    "Error ERROR: this AIFF file seems to be neither mono nor stereo (perhaps multi-track, or corrupted?)";
constexpr const char* kRate = "Error ERROR: this AIFF file has an unsupported sample rate";
constexpr const char* kMetadata = "Error ERROR: the metadatafor this file doesn't seem right";
constexpr const char* kDepth = "Error ERROR: this file has a bit depth that is not 8, 16, 24 or 32 bits";
constexpr const char* kLength =
    "Error ERROR: read file error as the metadata indicates more samples than there are in the file data";

TEST_F(AiffFileTest, EveryDepthIsSignedBigEndian) {
    EXPECT_TRUE(load(Aiff{.bits = 8, .data = Bytes("\x80\x40\xFF", 3)}.bytes()));
    EXPECT_EQ(samples(), (Floats{-1.0f, 0.5f, -1.0f / 128.0f}));
    EXPECT_TRUE(load(Aiff{.data = be(0x8000, 2) + be(0x2000, 2)}.bytes()));
    EXPECT_EQ(samples(), (Floats{-1.0f, 0.25f}));
    EXPECT_TRUE(load(Aiff{.bits = 24, .data = be(0x800000, 3) + be(1, 3)}.bytes()));
    EXPECT_EQ(samples(), (Floats{-1.0f, 1.0f / 8388608.0f}));
    EXPECT_TRUE(load(Aiff{.bits = 32, .data = be(0x80000000, 4) + be(0x40000000, 4)}.bytes()));
    EXPECT_EQ(samples(), (Floats{-1.0f, 0.5f}));
    EXPECT_EQ(reader.getBitDepth(), 32);
}

TEST_F(AiffFileTest, TheLinearEncodingsOfTheExtendedFormAreRead) {
    for (const char* const encoding : {"NONE", "twos"}) {
        EXPECT_TRUE(load(Aiff{.encoding = encoding, .data = be(0x4000, 2)}.bytes())) << encoding;
        EXPECT_EQ(samples(), Floats{0.5f});
    }
    EXPECT_TRUE(load(Aiff{.encoding = "sowt", .data = le(0x4000, 2)}.bytes()));
    EXPECT_EQ(samples(), Floats{0.5f});
    const Bytes word = be(std::bit_cast<std::uint32_t>(-0.3f), 4);
    for (const char* const encoding : {"fl32", "FL32"}) {
        EXPECT_TRUE(load(Aiff{.bits = 32, .encoding = encoding, .data = word}.bytes())) << encoding;
        EXPECT_EQ(samples(), Floats{-0.3f});
    }
}

TEST_F(AiffFileTest, OtherEncodingsDoNotDescribeTheirBytes) {
    for (const char* const encoding : {"ulaw", "fl64", "none"})
        expectRefused(Aiff{.bits = 32, .encoding = encoding, .data = "abcd"}.bytes(), kMetadata);
    expectRefused(Aiff{.encoding = "fl32", .data = "ab"}.bytes(), kMetadata);
}

TEST_F(AiffFileTest, AStereoFileContributesItsFirstChannel) {
    EXPECT_TRUE(
        load(Aiff{.channels = 2, .data = be(0x2000, 2) + be(1, 2) + be(0x4000, 2) + be(2, 2)}.bytes()));
    EXPECT_EQ(reader.getNumChannels(), 2);
    EXPECT_EQ(samples(), (Floats{0.25f, 0.5f}));
}

TEST_F(AiffFileTest, SamplesBeginBehindTheOffset) {
    EXPECT_TRUE(load(Aiff{.offset = 5, .data = be(0x4000, 2)}.bytes()));
    EXPECT_EQ(samples(), Floats{0.5f});
}

TEST_F(AiffFileTest, ChunksStandInAnyOrderAndOddOnesArePadded) {
    const Aiff aiff{.data = be(0x4000, 2)};
    EXPECT_TRUE(load(
        aiff.form(chunkBe("NAME", "abc") + chunkBe("SSND", aiff.sound()) + chunkBe("COMM", aiff.common()))));
    EXPECT_EQ(samples(), Floats{0.5f});
}

TEST_F(AiffFileTest, WithoutItsNameOrAnyOfItsTwoChunksItIsNoAiff) {
    const Aiff aiff{.data = be(1, 2)};
    const Bytes common = chunkBe("COMM", aiff.common());
    const Bytes sound = chunkBe("SSND", aiff.sound());
    expectRefused("FORM" + be(4, 4) + "ILBM" + common + sound, kNotAiff);
    expectRefused("FORM", kNotAiff);
    expectRefused(aiff.form(""), kNotAiff);
    expectRefused(aiff.form(common), kNotAiff);
    expectRefused(aiff.form(sound), kNotAiff);
    expectRefused(aiff.form(chunkBe("ANNO", "ab", 0x7FFFFFFF) + common + sound), kNotAiff);
    expectRefused(aiff.form(chunkBe("ANNO", "ab", 0xFFFFFFFF) + common + sound), kNotAiff);
}

TEST_F(AiffFileTest, MoreThanTwoChannelsAndNoneAreRefused) {
    for (const unsigned channels : {0u, 3u, 65535u})
        expectRefused(Aiff{.channels = channels, .frames = 1, .data = "abcdef"}.bytes(), kChannels);
}

TEST_F(AiffFileTest, EveryStandardRateIsKnownAndNoOther) {
    for (const unsigned rateHz : {8000u, 11025u, 12000u, 16000u, 22050u, 24000u, 32000u, 48000u, 64000u,
                                  88200u, 96000u, 176400u, 192000u}) {
        AudioFileReader other(static_cast<int>(rateHz), 2);
        write(path, Aiff{.rateHz = rateHz, .data = be(0x4000, 2)}.bytes());
        EXPECT_TRUE(other.load(path)) << rateHz;
        EXPECT_EQ(other.getSampleRate(), static_cast<int>(rateHz));
    }
    for (const unsigned rateHz : {1u, 44099u, 44101u, 192001u, 0xFFFFFFFFu})
        expectRefused(Aiff{.rateHz = rateHz, .data = "ab"}.bytes(), kRate);
}

TEST_F(AiffFileTest, ARateThatIsNoNumberIsNoRate) {
    const Aiff aiff{.data = "ab"};
    const Bytes head = aiff.common().substr(0, 8);
    for (const Bytes& rate : {Bytes(10, '\0'), Bytes(10, '\xFF'), Bytes("\x7F\xFF", 2) + be(0, 8),
                              Bytes("\xC0\x0E", 2) + be(0xAC44000000000000, 8)})
        expectRefused(aiff.form(chunkBe("COMM", head + rate) + chunkBe("SSND", aiff.sound())), kRate);
}

TEST_F(AiffFileTest, OtherDepthsAreRefused) {
    for (const unsigned bits : {0u, 1u, 12u, 20u, 64u})
        expectRefused(Aiff{.bits = bits, .frames = 1, .data = "abcdefgh"}.bytes(), kDepth);
}

TEST_F(AiffFileTest, SizesThatContradictEachOtherAreRefused) {
    const Aiff aiff{.data = "abcd"};
    const Bytes common = chunkBe("COMM", aiff.common());
    expectRefused(Aiff{.frames = 1, .data = "abcd"}.bytes(), kMetadata);
    expectRefused(aiff.form(chunkBe("COMM", aiff.common().substr(0, 16)) + chunkBe("SSND", aiff.sound())),
                  kMetadata);
    expectRefused(aiff.form(chunkBe("SSND", aiff.sound()) + chunkBe("COMM", aiff.common().substr(0, 10), 18)),
                  kMetadata);
    expectRefused(aiff.form(common + chunkBe("SSND", aiff.sound(), 7)), kMetadata);
    expectRefused(aiff.form(common + chunkBe("SSND", be(0xFFFFFFFF, 4) + be(0, 4) + "abcd")), kMetadata);
    expectRefused(aiff.form(common + chunkBe("SSND", be(0, 4))), kMetadata);
    const Aiff extendedForm{.encoding = "NONE", .data = "abcd"};
    expectRefused(extendedForm.form(common + chunkBe("SSND", aiff.sound())), kMetadata);
}

TEST_F(AiffFileTest, SoundBeyondTheEndOfTheFileIsRefused) {
    const Aiff aiff{.data = "abcd"};
    expectRefused(Aiff{.frames = 3, .data = "abcd"}.bytes(), kLength);
    expectRefused(Aiff{.channels = 2, .bits = 32, .frames = 0xFFFFFFFF, .data = "abcd"}.bytes(), kLength);
    const Bytes common = chunkBe("COMM", aiff.common());
    for (const std::int64_t size : {13LL, 0x7FFFFFFFLL, 0xFFFFFFFFLL})
        expectRefused(aiff.form(common + chunkBe("SSND", aiff.sound(), size)), kLength);
}

}  // namespace
