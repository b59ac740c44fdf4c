// docs/client_protocol.md against what it speaks of: its examples are vectors, its tables name every message
// and field, its JSON is what the program prints.
#include <fstream>
#include <google/protobuf/descriptor.h>
#include <google/protobuf/util/json_util.h>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>

#include "TarvekMessage.pb.h"
#include "client/MessageJson.h"
#include "support/ClientVectors.h"

namespace {

std::string document() {
    std::ostringstream text;
    text << std::ifstream(TARVEK_CLIENT_DOCUMENT).rdbuf();
    return text.str();
}

struct Block {
    std::string label;
    std::string text;
};

// What lies between fences.
std::vector<Block> blocks() {
    std::vector<Block> found;
    std::istringstream input(document());
    std::string line;
    bool isInside = false;
    while (std::getline(input, line)) {
        const bool isFence = line.starts_with("```");
        if (isFence && !isInside) found.push_back({line.substr(3), ""});
        if (!isFence && isInside) found.back().text += line + "\n";
        isInside = isInside != isFence;
    }
    EXPECT_FALSE(isInside);
    return found;
}

void expectNamed(const google::protobuf::Descriptor& type, const std::string& text,
                 std::set<const google::protobuf::Descriptor*>& seen) {
    if (!seen.insert(&type).second) return;
    for (int i = 0; i < type.field_count(); ++i) {
        EXPECT_NE(text.find("`" + type.field(i)->name() + "`"), std::string::npos)
            << type.name() << " has a field " << type.field(i)->name();
        if (type.field(i)->message_type()) expectNamed(*type.field(i)->message_type(), text, seen);
    }
}

}  // namespace

TEST(ProtocolDocument, ItsExamplesAreTheVectors) {
    std::map<std::string, std::string> frames;
    for (const auto& vector : ClientVectors(TARVEK_CLIENT_VECTORS).messages) {
        std::ostringstream text;
        for (const auto& frame : vector.frames)
            for (const int byte : frame)
                text << std::hex << byte / 16 << byte % 16;
        frames[vector.about] = text.str();
    }
    const std::string label = "vector ";
    int examples = 0;
    for (const Block& block : blocks()) {
        if (!block.label.starts_with(label)) continue;
        ++examples;
        std::string hexadecimal = block.text;
        std::erase_if(hexadecimal, [](char character) { return character == ' ' || character == '\n'; });
        ASSERT_TRUE(frames.contains(block.label.substr(label.size()))) << block.label;
        EXPECT_EQ(hexadecimal, frames[block.label.substr(label.size())]) << block.label;
    }
    EXPECT_GE(examples, 15);
}

TEST(ProtocolDocument, NamesEveryMessageAndEveryField) {
    std::set<const google::protobuf::Descriptor*> seen;
    expectNamed(*TarvekMessage::descriptor(), document(), seen);
    const google::protobuf::Descriptor& type = *TarvekMessage::descriptor();
    for (int i = 0; i < type.oneof_decl(0)->field_count(); ++i) {
        const auto& field = *type.oneof_decl(0)->field(i);
        EXPECT_NE(document().find("\n| " + std::to_string(field.number()) + " | `" + field.name() + "` |"),
                  std::string::npos)
            << field.name();
    }
}

TEST(ProtocolDocument, ItsJsonIsWhatTheProgramPrints) {
    int lines = 0;
    for (const Block& block : blocks()) {
        std::istringstream input(block.text);
        std::string line;
        while (std::getline(input, line)) {
            if (!line.starts_with("{") || line.starts_with("{\"failure\"")) continue;
            ++lines;
            TarvekMessage message;
            ASSERT_TRUE(google::protobuf::util::JsonStringToMessage(line, &message).ok()) << line;
            EXPECT_EQ(tvk::client::jsonOf(message), line);
        }
    }
    EXPECT_EQ(lines, 3);
}
