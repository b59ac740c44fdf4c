#include "utility/EscapedText.h"

#include <cstdint>
#include <cstdio>

namespace tvk {

namespace {

// A leading byte's range, the bytes that follow it, and the range of the first of them. The ranges leave out
// longer forms than need be, surrogates, and what lies above U+10FFFF (RFC 3629, section 4).
struct Form {
    std::uint8_t lowestLead, highestLead;
    std::size_t following;
    std::uint8_t lowestSecond, highestSecond;
};

constexpr Form kForms[] = {
    {0x00, 0x7F, 0, 0x80, 0xBF}, {0xC2, 0xDF, 1, 0x80, 0xBF}, {0xE0, 0xE0, 2, 0xA0, 0xBF},
    {0xE1, 0xEC, 2, 0x80, 0xBF}, {0xED, 0xED, 2, 0x80, 0x9F}, {0xEE, 0xEF, 2, 0x80, 0xBF},
    {0xF0, 0xF0, 3, 0x90, 0xBF}, {0xF1, 0xF3, 3, 0x80, 0xBF}, {0xF4, 0xF4, 3, 0x80, 0x8F}};

bool isBetween(std::uint8_t byte, std::uint8_t lowest, std::uint8_t highest) {
    return lowest <= byte && byte <= highest;
}

// Bytes of the character at the start of the text; 0 when there is none.
std::size_t characterLength(std::string_view text) {
    const auto byte = [text](std::size_t n) { return static_cast<std::uint8_t>(text[n]); };
    for (const Form& form : kForms) {
        if (!isBetween(byte(0), form.lowestLead, form.highestLead)) continue;
        if (text.size() <= form.following) return 0;
        if (form.following > 0 && !isBetween(byte(1), form.lowestSecond, form.highestSecond)) return 0;
        for (std::size_t n = 2; n <= form.following; ++n)
            if (!isBetween(byte(n), 0x80, 0xBF)) return 0;
        return form.following + 1;
    }
    return 0;
}

// Control bytes and, as characters of two bytes, U+0080 to U+009F, which some terminals obey likewise.
bool isPrintable(std::string_view character) {
    const auto lead = static_cast<std::uint8_t>(character[0]);
    if (character.size() == 1) return lead >= 0x20 && lead != 0x7F && lead != '\\';
    return lead != 0xC2 || static_cast<std::uint8_t>(character[1]) >= 0xA0;
}

}  // namespace

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string escaped(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        const std::string_view next = text.substr(0, length == 0 ? 1 : length);
        text.remove_prefix(next.size());
        if (length > 0 && isPrintable(next)) {
            result += next;
            continue;
        }
        for (const char byte : next) {
            char code[5];
            std::snprintf(code, sizeof code, "\\x%02X", static_cast<std::uint8_t>(byte));
            result += code;
        }
    }
    return result;
}

}  // namespace tvk
