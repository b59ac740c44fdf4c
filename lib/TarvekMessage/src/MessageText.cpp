#include "TarvekMessage/MessageText.h"

#include <google/protobuf/text_format.h>

namespace tvk {

std::string messageText(const google::protobuf::Message& message, std::size_t maxCharacters) {
    google::protobuf::TextFormat::Printer printer;
    printer.SetSingleLineMode(true);
    // A field that is cut to this length fills the whole text alone.
    printer.SetTruncateStringFieldLongerThan(static_cast<std::int64_t>(maxCharacters));
    std::string text;
    printer.PrintToString(message, &text);
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    if (text.size() > maxCharacters) text.resize(maxCharacters);
    return text;
}

}  // namespace tvk
