#include "client/tool/RawFile.h"

#include <google/protobuf/io/tokenizer.h>
#include <google/protobuf/text_format.h>
#include <sstream>

#include "client/Bytes.h"
#include "client/ClientError.h"
#include "utility/EscapedText.h"

namespace tvk::client {

namespace {

constexpr std::string_view kSeparator = "---";

// The first complaint, with its place in the whole text.
class Complaint final : public google::protobuf::io::ErrorCollector {
public:
    explicit Complaint(int firstLine) : firstLine_(firstLine) {}

    void AddError(int line, google::protobuf::io::ColumnNumber column, const std::string& message) override {
        if (!text_.empty()) return;
        text_ = "line " + std::to_string(firstLine_ + line) + ", column " + std::to_string(column + 1) +
                ": " + message;
    }

    const std::string& text() const { return text_; }

private:
    const int firstLine_;  // from 1
    std::string text_;
};

TarvekMessage parse(const std::string& text, int firstLine, const std::string& name) {
    Complaint complaint(firstLine);
    google::protobuf::TextFormat::Parser parser;
    parser.RecordErrorsTo(&complaint);
    TarvekMessage message;
    if (!parser.ParseFromString(text, &message))
        throw ClientError(Failure::BadUse, escaped(name) + ", " + escaped(complaint.text()) +
                                               "; a message looks like getCurrentAmplifier { dummy: true }");
    const std::size_t size = message.ByteSizeLong();
    if (size == 0 || size > kMaxMessageBytes)
        throw ClientError(Failure::BadUse, escaped(name) + ", line " + std::to_string(firstLine) +
                                               ": a message of " + std::to_string(size) +
                                               " bytes; it takes 1 to " + std::to_string(kMaxMessageBytes));
    return message;
}

bool isSeparator(const std::string& line) {
    const std::size_t end = line.find_last_not_of(" \t\r");
    return end != std::string::npos && line.substr(0, end + 1) == kSeparator;
}

}  // namespace

std::vector<TarvekMessage> parseMessages(const std::string& text, const std::string& name) {
    std::vector<TarvekMessage> messages;
    std::istringstream input(text);
    std::string line;
    std::string part;
    int firstLine = 1;
    for (int number = 1; std::getline(input, line); ++number) {
        if (!isSeparator(line)) {
            part += line + "\n";
            continue;
        }
        messages.push_back(parse(part, firstLine, name));
        part.clear();
        firstLine = number + 1;
    }
    messages.push_back(parse(part, firstLine, name));
    return messages;
}

}  // namespace tvk::client
