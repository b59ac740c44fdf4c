// A response is judged before it is sent, as the amplifier's reader would.
#include <filesystem>
#include <gtest/gtest.h>

#include "client/Bytes.h"
#include "client/ClientError.h"
#include "client/ResponseFile.h"
#include "client/ResponseName.h"
#include "support/LogRecorder.h"
#include "support/SoundFileBytes.h"
#include "support/TemporaryFolder.h"
#include "utility/AudioFileReader.h"

using namespace tvk::client;

namespace {

class ResponseFileTest : public testing::Test {
protected:
    std::string write(const std::string& bytes, const std::string& name = "room.wav") const {
        soundfile::write(folder.file(name), bytes);
        return folder.file(name);
    }
    static std::string refusal(const std::string& path, const std::optional<std::string>& name = {}) {
        try {
            ResponseFile::load(path, name);
        } catch (const ClientError& error) {
            EXPECT_EQ(error.getFailure(), Failure::BadUse);
            return error.what();
        }
        return {};
    }
    static soundfile::Wav wav(std::size_t samples) {
        soundfile::Wav file;
        file.data = std::string(2 * samples, 'x');
        return file;
    }

    static constexpr const char* kWhatFits =
        " A response that fits is a WAV or AIFF file at 44100 Hz, of 1 or 2 channels, with samples of 8, 16, "
        "24 or "
        "32 bits or 32-bit floats.";

    LogRecorder log;
    TemporaryFolder folder;
};

}  // namespace

TEST_F(ResponseFileTest, AGoodFileIsARequestWithItsBytesUnderItsStem) {
    const std::string bytes = wav(1000).bytes();
    const ResponseFile file = ResponseFile::load(write(bytes, "Big room.v2.wav"), {});
    EXPECT_EQ(file.name, "Big room.v2");
    EXPECT_EQ(file.request.adduserir().name(), "Big room.v2");
    EXPECT_EQ(file.request.adduserir().irdata(), bytes);
    EXPECT_TRUE(file.request.ignore_this_padding());
    EXPECT_EQ(file.samples, 1000);
    EXPECT_EQ(file.leftOut(), "");
}

TEST_F(ResponseFileTest, ANameThatIsGivenIsTaken) {
    EXPECT_EQ(ResponseFile::load(write(wav(10).bytes()), "other").request.adduserir().name(), "other");
}

TEST_F(ResponseFileTest, JudgesAsTheReaderOfTheAmplifierDoes) {
    std::vector<std::string> files;
    for (const unsigned bits : {4u, 8u, 12u, 16u, 24u, 32u, 64u})
        for (const unsigned channels : {0u, 1u, 2u, 3u})
            for (const unsigned tag : {1u, 2u, 3u, 0xFFFEu}) {
                soundfile::Wav file;
                file.bits = bits;
                file.channels = channels;
                file.tag = tag;
                file.data = std::string(48, 'x');
                files.push_back(file.bytes());
                soundfile::Aiff other;
                other.bits = bits;
                other.channels = channels;
                other.data = std::string(48, 'x');
                other.frames = 4;
                files.push_back(other.bytes());
            }
    for (const unsigned rate : {8000u, 44099u, 44100u, 48000u}) {
        soundfile::Wav file = wav(10);
        file.rateHz = rate;
        files.push_back(file.bytes());
        soundfile::Aiff other;
        other.rateHz = rate;
        other.data = std::string(20, 'x');
        files.push_back(other.bytes());
    }
    const std::string good = wav(10).bytes();
    for (std::size_t size = 0; size < good.size(); ++size)
        files.push_back(good.substr(0, size));
    int loaded = 0;
    for (const std::string& bytes : files) {
        const std::string path = write(bytes);
        AudioFileReader reader(44100, 2);
        const bool isGood = reader.load(path) && reader.getNumSamplesPerChannel() > 0;
        loaded += isGood ? 1 : 0;
        EXPECT_EQ(refusal(path).empty(), isGood) << refusal(path);
    }
    EXPECT_GT(loaded, 8);
}

TEST_F(ResponseFileTest, SaysWhatIsWrongAndWhatWouldFit) {
    soundfile::Wav file = wav(10);
    file.rateHz = 48000;
    const std::string path = write(file.bytes());
    EXPECT_EQ(refusal(path),
              path + ": File sample rate: 48000 does not match system sample rate : 44100." + kWhatFits);
    EXPECT_EQ(refusal(write("text")), path + ": Audio File Type: Error." + kWhatFits);
    EXPECT_EQ(refusal(write(wav(0).bytes())), path + ": holds no samples." + kWhatFits);
    EXPECT_EQ(refusal(write("RIFF")),
              path + ": ERROR: this doesn't seem to be a valid .WAV file." + kWhatFits);
}

TEST_F(ResponseFileTest, TheLargestThatFitsFitsAndTheErrorTellsItsLength) {
    // Message, its lengths and the name take 17 bytes and the header of the file 44.
    const std::size_t fitting = (kMaxMessageBytes - 13 - std::string("room").size() - 44) / 2;
    const ResponseFile file = ResponseFile::load(write(wav(fitting).bytes()), {});
    EXPECT_LE(file.request.ByteSizeLong(), kMaxMessageBytes);
    EXPECT_GE(file.request.ByteSizeLong(), kMaxMessageBytes - 1);
    const std::string path = write(wav(fitting + 1).bytes());
    EXPECT_EQ(
        refusal(path),
        path + ": its message would take " + std::to_string(file.request.ByteSizeLong() + 2) +
            " bytes, and 32768 is the limit; at 16 bits and 1 channel the first " + std::to_string(fitting) +
            " of its " + std::to_string(fitting + 1) +
            " samples fit (371 ms). The amplifier plays 4096 samples of one channel (93 ms): cut the file to "
            "that.");
    const std::string far = write(wav(100000).bytes());
    EXPECT_NE(refusal(far).find("the first " + std::to_string(fitting) + " of its 100000 samples"),
              std::string::npos)
        << refusal(far);
}

TEST_F(ResponseFileTest, ALongNameLeavesLessRoom) {
    const std::string path = write(wav(16250).bytes());
    EXPECT_EQ(refusal(path), "");
    EXPECT_NE(refusal(path, std::string(247, 'n')), "");
}

TEST_F(ResponseFileTest, OtherChunksThatFillAMessageAreNamed) {
    const soundfile::Wav file = wav(10);
    const std::string bytes = soundfile::Wav::riff(soundfile::chunkLe("fmt ", file.format()) +
                                                   soundfile::chunkLe("LIST", std::string(40000, 'x')) +
                                                   soundfile::chunkLe("data", file.data));
    EXPECT_NE(refusal(write(bytes)).find("most of the file is not sound: export it without other chunks"),
              std::string::npos);
}

TEST_F(ResponseFileTest, AFileThatCannotBeReadIsNamed) {
    EXPECT_TRUE(refusal(folder.file("lost.wav")).starts_with(folder.file("lost.wav") + ": No such file"));
    EXPECT_EQ(refusal(folder.path().string(), "name"), folder.path().string() + ": is not a regular file");
    const std::string path = write(wav(10).bytes());
    std::filesystem::resize_file(path, (16 << 20) + 1);
    EXPECT_NE(refusal(path).find("has 16777217 bytes, far more than the 32768 of a message"),
              std::string::npos);
}

TEST_F(ResponseFileTest, SaysWhatTheAmplifierDoesNotPlay) {
    soundfile::Wav stereo;
    stereo.channels = 2;
    stereo.data = std::string(4 * 5000, 'x');
    EXPECT_EQ(ResponseFile::load(write(wav(4096).bytes()), {}).leftOut(), "");
    EXPECT_EQ(ResponseFile::load(write(wav(4097).bytes()), {}).leftOut(),
              "The amplifier plays the first 4096 of the 4097 samples (93 ms).");
    EXPECT_EQ(ResponseFile::load(write(stereo.bytes()), {}).leftOut(),
              "The amplifier plays the first 4096 of the 5000 samples (93 ms). The amplifier plays channel 1 "
              "alone.");
}

TEST_F(ResponseFileTest, ABadNameIsRefusedBeforeTheFileIsLookedAt) {
    EXPECT_EQ(refusal("/nowhere/None.wav"),
              "\"None\": a name is not \"None\", which stands for no response; give one behind the file.");
    EXPECT_EQ(refusal("/nowhere/a.wav", "a/b"), "\"a/b\": a name has no \"/\".");
}

TEST(ResponseName, IsJudgedAsTheAmplifierDoes) {
    for (const std::string& good : {std::string("Room"), std::string(247, 'n'), std::string("..."),
                                    std::string(" "), std::string("R\xC3\xA4ume"), std::string("a\\b")}) {
        EXPECT_EQ(faultOfName(good), "") << good;
        EXPECT_EQ(faultOfSlotName(good), "") << good;
    }
    for (const std::string& bad : {std::string(), std::string("."), std::string(".."), std::string("a/b"),
                                   std::string("a\0b", 3), std::string("a\nb"), std::string("\x7F"),
                                   std::string(248, 'n'), std::string("\xFF"), std::string("\xC0\xAF")}) {
        EXPECT_NE(faultOfName(bad), "") << bad;
        EXPECT_NE(faultOfSlotName(bad), "") << bad;
    }
    for (const char* none : {"None", "none"}) {
        EXPECT_NE(faultOfName(none), "");
        EXPECT_EQ(faultOfSlotName(none), "");
    }
}
