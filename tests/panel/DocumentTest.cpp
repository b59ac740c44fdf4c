// The protocol's document against the vectors: what it shows in hexadecimal has been made by neither hand nor
// coder of the project.
#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "panel/Frame.h"
#include "panel/Pins.h"
#include "support/PanelVectors.h"

namespace {

struct Block {
    std::string kind;
    std::vector<std::string> lines;
};

std::vector<std::string> documentLines() {
    std::ifstream file(TARVEK_PANEL_DOCUMENT);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

// What lies between fences, with what is said behind the opening one.
std::vector<Block> blocks() {
    std::vector<Block> found;
    bool isOpen = false;
    for (const std::string& line : documentLines()) {
        const bool isFence = line.rfind("```", 0) == 0;
        if (isFence && !isOpen) found.push_back({line.substr(3), {}});
        if (isFence) isOpen = !isOpen;
        if (!isFence && isOpen) found.back().lines.push_back(line);
    }
    return found;
}

// The bytes from there on, up to the first word that is none.
PanelVectors::Bytes bytesOf(const std::string& text) {
    PanelVectors::Bytes bytes;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        if (word.size() != 2 || word.find_first_not_of("0123456789abcdef") != std::string::npos) break;
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(word, nullptr, 16)));
    }
    return bytes;
}

const PanelVectors::Frame* vectorOf(const PanelVectors::Bytes& bytes) {
    const auto found = std::find_if(PanelVectors::all().frames.begin(), PanelVectors::all().frames.end(),
                                    [&](const PanelVectors::Frame& frame) { return frame.bytes == bytes; });
    return found == PanelVectors::all().frames.end() ? nullptr : &*found;
}

TEST(PanelDocumentTest, EveryFrameOfItIsAVectorOfItsNameValueAndType) {
    int shown = 0;
    for (const Block& block : blocks()) {
        if (block.kind != "frames") continue;
        for (const std::string& line : block.lines) {
            std::istringstream words(line);
            std::string name;
            std::string type;
            double number = 0.0;
            ASSERT_TRUE(words >> name >> number >> type) << line;
            std::string rest;
            std::getline(words, rest);
            const PanelVectors::Frame* const frame = vectorOf(bytesOf(rest));
            ASSERT_NE(frame, nullptr) << line;
            EXPECT_EQ(frame->variable.name, name);
            EXPECT_EQ(frame->number, number) << line;
            EXPECT_EQ(tvk::panel::typeName(frame->variable.type), type) << line;
            ++shown;
        }
    }
    EXPECT_EQ(shown, 8);
}

TEST(PanelDocumentTest, EveryFrameThatItTakesApartIsAVector) {
    int shown = 0;
    for (const Block& block : blocks()) {
        if (block.kind != "anatomy") continue;
        PanelVectors::Bytes bytes;
        for (const std::string& line : block.lines) {
            const PanelVectors::Bytes part = bytesOf(line);
            EXPECT_FALSE(part.empty()) << line;
            bytes.insert(bytes.end(), part.begin(), part.end());
        }
        EXPECT_NE(vectorOf(bytes), nullptr) << block.lines[2];
        ++shown;
    }
    EXPECT_EQ(shown, 2);
}

TEST(PanelDocumentTest, EveryStreamOfItIsAVector) {
    int shown = 0;
    for (const Block& block : blocks()) {
        if (block.kind.rfind("stream ", 0) != 0) continue;
        PanelVectors::Bytes bytes;
        for (const std::string& line : block.lines)
            for (const std::uint8_t byte : bytesOf(line))
                bytes.push_back(byte);
        const auto found = std::find_if(
            PanelVectors::all().streams.begin(), PanelVectors::all().streams.end(),
            [&](const PanelVectors::Stream& stream) { return "stream " + stream.about == block.kind; });
        ASSERT_NE(found, PanelVectors::all().streams.end()) << block.kind;
        EXPECT_EQ(found->bytes, bytes);
        ++shown;
    }
    EXPECT_EQ(shown, 1);
}

TEST(PanelDocumentTest, HasNoOtherBlocks) {
    EXPECT_EQ(blocks().size(), 2u + 2u + 1u);
}

TEST(PanelDocumentTest, ListsEveryPinWithItsType) {
    const std::vector<std::string> lines = documentLines();
    for (const tvk::panel::Pin& pin : tvk::panel::pins()) {
        const std::string row =
            std::string("| `") + pin.name + "` | " + tvk::panel::typeName(pin.type) + " |";
        EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
            return line.rfind(row, 0) == 0;
        })) << row;
    }
}

}  // namespace
