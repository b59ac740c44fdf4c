#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "panel/Crc16.h"
#include "panel/Frame.h"
#include "panel/FrameScanner.h"
#include "support/PanelVectors.h"

using namespace tvk::panel;

namespace {

std::string textOf(const PanelVectors::Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

Frame frameOf(const PanelVectors::Variable& variable) {
    return {variable.type, variable.name, textOf(variable.value)};
}

std::vector<Frame> framesOf(const std::vector<PanelVectors::Variable>& variables) {
    std::vector<Frame> frames;
    for (const PanelVectors::Variable& variable : variables)
        frames.push_back(frameOf(variable));
    return frames;
}

struct Found {
    std::vector<Frame> frames;
    std::vector<std::string> faults;
};

Found scan(FrameScanner& scanner, std::string_view bytes) {
    Found found;
    for (const Received& received : scanner.take(bytes)) {
        if (const Frame* const frame = std::get_if<Frame>(&received))
            found.frames.push_back(*frame);
        else
            found.faults.push_back(std::get<Fault>(received).about);
    }
    return found;
}

Found scan(std::string_view bytes) {
    FrameScanner scanner;
    return scan(scanner, bytes);
}

TEST(PanelCrc16Test, OfTheNineDigitsIsThePublishedCheckValue) {
    EXPECT_EQ(crc16("123456789"), 0x31C3);
}

TEST(PanelCrc16Test, EqualsTheOtherImplementation) {
    ASSERT_FALSE(PanelVectors::all().checked.empty());
    for (const auto& [bytes, crc] : PanelVectors::all().checked)
        EXPECT_EQ(crc16(textOf(bytes)), crc);
}

TEST(PanelFrameTest, IsEncodedToTheBytesOfEveryVector) {
    ASSERT_GT(PanelVectors::all().frames.size(), 80u);
    for (const PanelVectors::Frame& frame : PanelVectors::all().frames)
        EXPECT_EQ(encode(frameOf(frame.variable)), textOf(frame.bytes)) << frame.variable;
}

TEST(PanelFrameTest, IsNotMadeWhereItDoesNotFitOrHasNoGoodName) {
    ASSERT_FALSE(PanelVectors::all().refused.empty());
    for (const PanelVectors::Variable& variable : PanelVectors::all().refused)
        EXPECT_EQ(encode(frameOf(variable)), std::nullopt) << variable;
}

TEST(PanelFrameTest, HasTheNumberOfEveryVector) {
    for (const PanelVectors::Frame& frame : PanelVectors::all().frames) {
        // The vectors' floats are those of the shortest decimal; the bytes hold the nearest single.
        std::optional<double> expected = frame.number;
        if (expected && frame.variable.type == kFloat) expected = static_cast<float>(*expected);
        EXPECT_EQ(numberOf(frameOf(frame.variable)), expected) << frame.variable;
    }
}

TEST(PanelFrameTest, MakesTheTwoTypesThatAPanelSends) {
    EXPECT_EQ(floatFrame("PA_4", 0.5f), (Frame{0, "PA_4", std::string("\0\0\0\x3F", 4)}));
    EXPECT_EQ(intFrame("PF_4", -2), (Frame{6, "PF_4", "\xFE\xFF\xFF\xFF"}));
}

TEST(PanelFrameTest, ShowsItsValueAsText) {
    EXPECT_EQ(valueText(floatFrame("PA_4", 0.1f)), "0.1");
    EXPECT_EQ(valueText(intFrame("PF_4", -2147483647 - 1)), "-2147483648");
    EXPECT_EQ(valueText({5, "V", "\xFF\x7F"}), "32767");
    EXPECT_EQ(valueText({3, "V", "\xFF\xFF\xFF\xFF"}), "4294967295");
    EXPECT_EQ(valueText({kString, "V", "a\nb"}), "\"a\\x0Ab\"");
}

TEST(PanelFrameTest, ShowsBytesInHexadecimalAndNotTooMany) {
    EXPECT_EQ(hexText("\xF7\x06 "), "f7 06 20");
    EXPECT_EQ(hexText(""), "");
    EXPECT_EQ(hexText("abcd", 3), "61 62 63 ...");
}

TEST(PanelFrameScannerTest, TakesInTheFrameOfEveryVector) {
    for (const PanelVectors::Frame& frame : PanelVectors::all().frames) {
        const Found found = scan(textOf(frame.bytes));
        EXPECT_EQ(found.frames, std::vector<Frame>{frameOf(frame.variable)});
        EXPECT_TRUE(found.faults.empty());
    }
}

TEST(PanelFrameScannerTest, TakesOutOfEveryStreamWhatIsGood) {
    ASSERT_GT(PanelVectors::all().streams.size(), 60u);
    for (const PanelVectors::Stream& stream : PanelVectors::all().streams)
        EXPECT_EQ(scan(textOf(stream.bytes)).frames, framesOf(stream.accepted)) << stream.about;
}

TEST(PanelFrameScannerTest, TakesTheSameHoweverTheStreamIsCut) {
    for (const PanelVectors::Stream& stream : PanelVectors::all().streams) {
        FrameScanner scanner;
        std::vector<Frame> frames;
        for (const char byte : textOf(stream.bytes))
            for (const Frame& frame : scan(scanner, {&byte, 1}).frames)
                frames.push_back(frame);
        EXPECT_EQ(frames, framesOf(stream.accepted)) << stream.about;
    }
}

TEST(PanelFrameScannerTest, SaysWhatItDropped) {
    using Faults = std::vector<std::string>;
    const std::string good = *encode(intFrame("PF_4", 1));
    std::string damaged = contentOf(intFrame("PF_4", 1));
    damaged[7] ^= 2;
    EXPECT_EQ(scan("xyz\x7F" + good).faults, Faults{"bytes outside of frames (3)"});
    EXPECT_EQ(scan(good.substr(0, 6) + good).faults, Faults{"a frame without its end"});
    EXPECT_EQ(scan("\xF7\x7F").faults, Faults{"0 bytes of content, fewer than a frame has"});
    EXPECT_EQ(scan(enclose(std::string(200, 'x')) + good).faults, Faults{"more than 128 bytes of content"});
    EXPECT_EQ(scan(enclose(contentOf({6, "PF_4", "\1\1"}))).faults,
              Faults{"a value of 2 bytes, where int32 has 4"});
    EXPECT_EQ(scan(enclose(contentOf({8, "PF_4", "\1\1"}))).faults, Faults{"there is no type 8"});
    EXPECT_EQ(scan(enclose(contentOf({6, "", "\1\1\1\1"}))).faults, Faults{"an empty name"});
    EXPECT_EQ(scan(enclose(contentOf({6, "PF_4", ""}))).faults, Faults{"no value"});
    EXPECT_EQ(scan(enclose(contentOf({0, "PA_4", std::string("\0\0\x80\x7F", 4)}))).faults,
              Faults{"a float that is not finite"});
    ASSERT_EQ(scan(enclose(damaged)).faults.size(), 1u);
    EXPECT_EQ(scan(enclose(damaged)).faults[0].substr(0, 6), "CRC 0x");
    EXPECT_EQ(scan("\x7F\x7F" + good).faults, Faults{});
}

}  // namespace
