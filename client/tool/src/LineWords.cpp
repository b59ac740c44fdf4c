#include <algorithm>

#include "client/ClientError.h"
#include "client/tool/Command.h"

namespace tvk::client {

namespace {

constexpr std::string_view kBlanks = " \t\r";

// The word at the start of the text, which it takes away.
std::string takeWord(std::string_view& text) {
    std::string word;
    char quote = '\0';
    while (!text.empty() && (quote != '\0' || kBlanks.find(text[0]) == std::string_view::npos)) {
        const char character = text[0];
        text.remove_prefix(1);
        const bool isQuote = character == '"' || character == '\'';
        if (quote == '\0' && isQuote) {
            quote = character;
        } else if (quote == character) {
            quote = '\0';
        } else if (character == '\\' && quote != '\'' && !text.empty()) {
            word += text[0];
            text.remove_prefix(1);
        } else {
            word += character;
        }
    }
    if (quote != '\0')
        throw ClientError(Failure::BadUse,
                          std::string("a quotation that begins with ") + quote + " has no end");
    return word;
}

}  // namespace

std::vector<std::string> splitLine(const std::string& line) {
    std::vector<std::string> words;
    std::string_view rest = line;
    for (;;) {
        rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
        if (rest.empty() || rest[0] == '#') return words;
        words.push_back(takeWord(rest));
    }
}

}  // namespace tvk::client
