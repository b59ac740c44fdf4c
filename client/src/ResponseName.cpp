#include "client/ResponseName.h"

#include <algorithm>

#include "utility/EscapedText.h"

namespace tvk::client {

namespace {

// A file name of 255 bytes, of which the amplifier takes ".wav" and ".tmp".
constexpr std::size_t kLongestName = 247;

bool isControl(char character) {
    return static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
}

}  // namespace

std::string faultOfSlotName(std::string_view name) {
    if (name.empty()) return "has at least one character";
    if (name.size() > kLongestName)
        return "has at most " + std::to_string(kLongestName) + " bytes, and this one " +
               std::to_string(name.size());
    if (name == "." || name == "..") return "is not \".\" or \"..\"";
    if (name.find('/') != std::string_view::npos) return "has no \"/\"";
    if (std::ranges::any_of(name, isControl)) return "has no control characters";
    if (!isUtf8(name)) return "is UTF-8";
    return {};
}

std::string faultOfName(std::string_view name) {
    if (name == "None" || name == "none") return "is not \"None\", which stands for no response";
    return faultOfSlotName(name);
}

}  // namespace tvk::client
