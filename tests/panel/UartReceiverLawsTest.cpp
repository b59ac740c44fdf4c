#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <string>

#include "support/PanelVectors.h"
#include "support/UartReceiverLaws.h"

namespace {

constexpr int kInputs = 100000;

class Inputs {
public:
    // Marks are as frequent as all other bytes together, or rare enough for contents without an end.
    std::string bytes(std::size_t most) {
        constexpr std::array<char, 8> kFrequent = {'\xF7', '\xF7', '\x7F', '\x7F',
                                                   '\x7D', '\x7D', '\0',   '\6'};
        const std::size_t rarity = below(2) == 0 ? 2 : 200;
        std::string text;
        for (std::size_t left = below(most + 1); left > 0; --left)
            text += below(rarity) == 0 ? kFrequent[below(8)] : static_cast<char>(below(256));
        return text;
    }

    std::string raw() { return '\0' + bytes(below(16) == 0 ? 400 : 30); }

    // What is nearly a frame of the panel.
    std::string framed() {
        std::string input = "\1";
        for (std::size_t count = below(4); count > 0; --count) {
            constexpr std::array kNames = {"PA_4", "PF_4", "V", "", "nobody"};
            std::string covered = {static_cast<char>(below(9)), static_cast<char>(below(20) == 0)};
            covered += kNames[below(kNames.size())];
            if (below(10) != 0) covered += '\0';
            constexpr std::array<std::size_t, 4> kSizes = {4, 2, 1, 140};
            const std::size_t size = kSizes[below(8) == 0 ? 3 : below(3)];
            covered += below(3) == 0 ? bytes(size) : std::string(size, static_cast<char>(below(256)));
            input += static_cast<char>(covered.size());
            input += covered;
        }
        return input;
    }

    std::size_t below(std::size_t limit) { return random_() % limit; }

private:
    std::mt19937 random_{20};
};

TEST(UartReceiverLawsTest, HoldForRandomBytes) {
    UartReceiverLaws laws;
    Inputs inputs;
    for (int n = 0; n < kInputs; ++n)
        ASSERT_STREQ(laws.brokenBy(UartReceiverLaws::streamOf(inputs.raw())), nullptr) << "input " << n;
}

TEST(UartReceiverLawsTest, HoldForRandomFramesUnderAGoodCrc) {
    UartReceiverLaws laws;
    Inputs inputs;
    for (int n = 0; n < kInputs; ++n)
        ASSERT_STREQ(laws.brokenBy(UartReceiverLaws::streamOf(inputs.framed())), nullptr) << "input " << n;
    // The good frame behind each input, and a good part of what the inputs hold.
    EXPECT_GT(laws.framesTaken(), kInputs + kInputs / 4u);
}

TEST(UartReceiverLawsTest, HoldForTheVectorsOneBehindTheOther) {
    UartReceiverLaws laws;
    for (const PanelVectors::Stream& stream : PanelVectors::all().streams)
        for (const PanelVectors::Stream& next : PanelVectors::all().streams) {
            std::string bytes(stream.bytes.begin(), stream.bytes.end());
            bytes.append(next.bytes.begin(), next.bytes.end());
            ASSERT_STREQ(laws.brokenBy(bytes), nullptr) << stream.about << ", then " << next.about;
        }
}

}  // namespace
