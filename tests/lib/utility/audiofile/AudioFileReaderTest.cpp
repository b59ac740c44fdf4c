#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <set>
#include <sys/stat.h>

#include "ReaderFixture.h"
#include "utility/AudioFileReader.h"
#include "utility/ProductPaths.h"

namespace {

using namespace soundfile;
using AudioFileReaderTest = ReaderFixture;
using Lines = std::vector<std::string>;
namespace fs = std::filesystem;

constexpr const char* kTooEarly = "Error Tried to get data but no audio file is currently loaded.";
constexpr const char* kCannotLoad = "Error ERROR: File doesn't exist or otherwise can't load file\n";
constexpr const char* kShortRead = "Error ERROR: Couldn't read entire file\n";

// Gives a file in pieces, with interruptions, and ends it early when told.
class AwkwardFiles : public tvk::OsFiles {
public:
    std::size_t endsAfter = SIZE_MAX;
    bool fails = false;

    ssize_t read(int descriptor, void* bytes, std::size_t count) override {
        interrupted_ = !interrupted_;
        errno = interrupted_ ? EINTR : EIO;
        if (interrupted_ || fails) return -1;
        const ssize_t got = OsFiles::read(descriptor, bytes, std::min({count, std::size_t{3}, endsAfter}));
        endsAfter -= static_cast<std::size_t>(got);
        return got;
    }

private:
    bool interrupted_ = false;
};

TEST_F(AudioFileReaderTest, AGoodLoadIsTwoLinesInTheLog) {
    EXPECT_TRUE(load(Wav{.data = le(1, 2)}.bytes()));
    EXPECT_EQ(log.lines(), (Lines{"AudioFileReader: loading file " + path,
                                  "AudioFileReader: File path is : " + path + " \n"}));
}

TEST_F(AudioFileReaderTest, EveryGetterComplainsBeforeAFileIsLoaded) {
    float dest = 7.0f;
    EXPECT_EQ(reader.getSampleRate() + reader.getBitDepth() + reader.getNumChannels() +
                  reader.getNumSamplesPerChannel() + reader.getSamples(&dest, 1),
              0);
    EXPECT_EQ(log.lines(), Lines(5, kTooEarly));
    EXPECT_EQ(dest, 7.0f);
}

TEST_F(AudioFileReaderTest, ARefusedFileLeavesNothingOfTheOneBefore) {
    EXPECT_TRUE(load(Wav{.data = le(1, 2)}.bytes()));
    EXPECT_FALSE(load("something else"));
    EXPECT_FALSE(reader.isLoaded());
    EXPECT_EQ(reader.getNumSamplesPerChannel(), 0);
    EXPECT_TRUE(log.has(kTooEarly));
}

TEST_F(AudioFileReaderTest, NoMoreSamplesAreCopiedThanThereIsRoomFor) {
    EXPECT_TRUE(load(Wav{.data = le(0x2000, 2) + le(0x4000, 2) + le(0x6000, 2)}.bytes()));
    std::vector<float> dest(4, 7.0f);
    EXPECT_EQ(reader.getSamples(dest.data(), 2), 2);
    EXPECT_EQ(dest, (std::vector<float>{0.25f, 0.5f, 7.0f, 7.0f}));
    EXPECT_EQ(reader.getSamples(dest.data(), 4), 3);
    EXPECT_EQ(reader.getSamples(dest.data(), -1), 0);
}

TEST_F(AudioFileReaderTest, AFileThatIsNotThereOrNoFileCannotBeLoaded) {
    const std::string fifo = folder.file("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    for (const std::string& bad : {folder.file("missing"), folder.path().string(), fifo, std::string()}) {
        log.clear();
        EXPECT_FALSE(reader.load(bad));
        EXPECT_EQ(complaints(), (Lines{kCannotLoad, "Warn Not able to open input file " + bad + ".\n"}));
    }
}

TEST_F(AudioFileReaderTest, ALinkIsFollowedOutsideTheUsersDataAlone) {
    write(path, Wav{.data = le(0x4000, 2)}.bytes());
    const std::string link = folder.file("link");
    fs::create_symlink(path, link);
    EXPECT_TRUE(reader.load(link));
    tvk::ProductPaths::set(tvk::ProductPaths::kHomeRoot, folder.path().string());
    const bool isLinkLoaded = reader.load(link);
    const bool isFileLoaded = reader.load(path);
    tvk::ProductPaths::set(tvk::ProductPaths::kHomeRoot, tvk::ProductPaths::kUserData);
    EXPECT_FALSE(isLinkLoaded);
    EXPECT_TRUE(isFileLoaded);
}

TEST_F(AudioFileReaderTest, AFileThatEndsBeforeItsSizeWasNotRead) {
    write(path, Wav{.data = le(0x4000, 2)}.bytes());
    AwkwardFiles files;
    AudioFileReader awkward(44100, 2, files);
    EXPECT_TRUE(awkward.load(path));
    EXPECT_EQ(awkward.getNumSamplesPerChannel(), 1);
    const Lines refusal{kShortRead, "Warn Not able to open input file " + path + ".\n"};
    files.endsAfter = 20;
    log.clear();
    EXPECT_FALSE(awkward.load(path));
    EXPECT_EQ(complaints(), refusal);
    files.fails = true;
    log.clear();
    EXPECT_FALSE(awkward.load(path));
    EXPECT_EQ(complaints(), refusal);
}

TEST_F(AudioFileReaderTest, SixteenMebibytesAreReadAndNotOneByteMore) {
    constexpr std::size_t kLimit = 16u << 20;
    const Wav head{.bits = 8};
    const std::size_t room = kLimit - head.bytes().size();
    EXPECT_TRUE(load(Wav{.bits = 8, .data = Bytes(room, '\x80')}.bytes()));
    EXPECT_EQ(reader.getNumSamplesPerChannel(), static_cast<int>(room));
    EXPECT_FALSE(load(Wav{.bits = 8, .data = Bytes(room + 1, '\x80')}.bytes()));
    EXPECT_EQ(complaints(), (Lines{kShortRead, "Warn Not able to open input file " + path + ".\n"}));
}

TEST_F(AudioFileReaderTest, TheFirstFourBytesChooseTheFormat) {
    for (const Bytes& bytes :
         {Bytes(), Bytes("RIF"), Bytes("riff") + Bytes(40, '\0'), Bytes("OggS") + Bytes(40, '\0')}) {
        EXPECT_FALSE(load(bytes));
        EXPECT_EQ(log.lines(), (Lines{"AudioFileReader: loading file " + path,
                                      "AudioFileReader: Audio File Type: Error"}));
    }
}

TEST_F(AudioFileReaderTest, AnotherRateThanTheSystemsIsRefused) {
    const std::string text = "Warn File sample rate: 48000 does not match system sample rate : 44100\n";
    expectRefused(Wav{.rateHz = 48000, .data = "ab"}.bytes(), text);
    expectRefused(Aiff{.rateHz = 48000, .data = "ab"}.bytes(), text);
}

TEST_F(AudioFileReaderTest, MoreChannelsThanTheReaderWantsAreRefused) {
    write(path, Wav{.channels = 2, .data = "abcd"}.bytes());
    AudioFileReader mono(44100, 1);
    EXPECT_FALSE(mono.load(path));
    EXPECT_EQ(complaints(), Lines{"Warn Not able to process more than 1 channels\n"});
}

TEST_F(AudioFileReaderTest, TheFuzzersSeedsHoldEveryAnswerThatTheReaderHas) {
    std::set<std::string> refusals;
    std::set<int> depths;
    for (const fs::directory_entry& seed : fs::directory_iterator(TARVEK_AUDIO_CORPUS)) {
        const std::string name = seed.path().filename().string();
        log.clear();
        EXPECT_EQ(reader.load(seed.path().string()), name.rfind("yes_", 0) == 0) << name;
        if (reader.isLoaded()) depths.insert(reader.getBitDepth());
        for (const std::string& line : complaints())
            refusals.insert(line);
        for (const std::string& line : log.startingWith("AudioFileReader: Audio File Type"))
            refusals.insert(line);
    }
    EXPECT_EQ(depths, (std::set<int>{8, 16, 24, 32}));
    // 5 reasons of a WAV file, 4 of an AIFF file, two of either, the type, the rate.
    EXPECT_EQ(refusals.size(), 12u) << testing::PrintToString(refusals);
}

}  // namespace
