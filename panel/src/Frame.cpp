#include "panel/Frame.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

#include "panel/Crc16.h"
#include "utility/EscapedText.h"
#include "utility/Exception.h"

namespace tvk::panel {

namespace {

struct Type {
    const char* name;
    std::size_t bytes;  // 0: any number but none
    bool isSigned;
};

constexpr std::array<Type, 8> kTypes = {{{"float", 4, true},
                                         {"uint8", 1, false},
                                         {"uint16", 2, false},
                                         {"uint32", 4, false},
                                         {"int8", 1, true},
                                         {"int16", 2, true},
                                         {"int32", 4, true},
                                         {"string", 0, false}}};

// The shortest content: type, a name of one character, its NUL, a value of one byte, CRC.
constexpr std::size_t kShortest = 2 + 1 + 1 + 1 + 2;

std::string lowFirst(std::uint64_t number, std::size_t count) {
    std::string bytes;
    for (; count > 0; --count, number >>= 8)
        bytes.push_back(static_cast<char>(number & 0xFF));
    return bytes;
}

std::uint64_t numberLowFirst(std::string_view bytes) {
    std::uint64_t number = 0;
    std::uint64_t place = 1;
    for (const char c : bytes) {
        number += place * static_cast<unsigned char>(c);
        place *= 256;
    }
    return number;
}

float asFloat(std::string_view bytes) {
    const auto word = static_cast<std::uint32_t>(numberLowFirst(bytes));
    float value = 0.0f;
    std::memcpy(&value, &word, sizeof value);
    return value;
}

bool isMark(char c) {
    return c == kStart || c == kEnd || c == kEscape;
}

std::string faultOfValue(const Frame& frame) {
    if (frame.type < 0 || frame.type >= static_cast<int>(kTypes.size()))
        return "there is no type " + std::to_string(frame.type);
    const Type& type = kTypes[static_cast<std::size_t>(frame.type)];
    if (type.bytes != 0 && frame.value.size() != type.bytes)
        return "a value of " + std::to_string(frame.value.size()) + " bytes, where " + type.name + " has " +
               std::to_string(type.bytes);
    if (frame.type == kFloat && !std::isfinite(asFloat(frame.value))) return "a float that is not finite";
    return {};
}

Parsed faulty(std::string fault) {
    return {std::nullopt, std::move(fault)};
}

}  // namespace

Frame floatFrame(const std::string& name, float value) {
    std::uint32_t word = 0;
    std::memcpy(&word, &value, sizeof word);
    return {kFloat, name, lowFirst(word, 4)};
}

Frame intFrame(const std::string& name, std::int32_t value) {
    return {kInt32, name, lowFirst(static_cast<std::uint32_t>(value), 4)};
}

std::string contentOf(const Frame& frame) {
    const std::string covered =
        lowFirst(static_cast<std::uint64_t>(frame.type), 2) + frame.name + '\0' + frame.value;
    return covered + lowFirst(crc16(covered), 2);
}

std::string enclose(std::string_view content) {
    std::string bytes(1, kStart);
    for (const char c : content) {
        if (isMark(c)) bytes.push_back(kEscape);
        bytes.push_back(c);
    }
    bytes.push_back(kEnd);
    return bytes;
}

std::optional<std::string> encode(const Frame& frame) {
    if (frame.name.empty() || frame.name.find('\0') != std::string::npos) return std::nullopt;
    std::string bytes = enclose(contentOf(frame));
    if (bytes.size() > kLongestFrame) return std::nullopt;
    return bytes;
}

Parsed parse(std::string_view content) {
    if (content.size() < kShortest)
        return faulty(std::to_string(content.size()) + " bytes of content, fewer than a frame has");
    const std::string_view covered = content.substr(0, content.size() - 2);
    const std::uint64_t sent = numberLowFirst(content.substr(covered.size()));
    if (const std::uint16_t right = crc16(covered); sent != right)
        return faulty(formatText("CRC 0x%04x, where 0x%04x is right", static_cast<unsigned>(sent), right));
    const std::size_t nul = covered.find('\0', 2);
    if (nul == std::string_view::npos) return faulty("no NUL behind the name");
    if (nul == 2) return faulty("an empty name");
    Frame frame{static_cast<int>(numberLowFirst(covered.substr(0, 2))),
                std::string(covered.substr(2, nul - 2)), std::string(covered.substr(nul + 1))};
    if (frame.value.empty()) return faulty("no value");
    std::string fault = faultOfValue(frame);
    if (!fault.empty()) return faulty(std::move(fault));
    return {std::move(frame), {}};
}

std::optional<double> numberOf(const Frame& frame) {
    if (frame.type == kFloat) return asFloat(frame.value);
    if (frame.type == kString) return std::nullopt;
    const Type& type = kTypes.at(static_cast<std::size_t>(frame.type));
    const auto number = static_cast<double>(numberLowFirst(frame.value));
    const double range = std::ldexp(1.0, static_cast<int>(8 * type.bytes));
    return type.isSigned && number >= range / 2 ? number - range : number;
}

std::string typeName(int type) {
    return kTypes.at(static_cast<std::size_t>(type)).name;
}

std::string valueText(const Frame& frame) {
    const std::optional<double> number = numberOf(frame);
    if (!number) return '"' + escaped(frame.value) + '"';
    std::array<char, 64> text{};
    const auto end = frame.type == kFloat
                         ? std::to_chars(text.begin(), text.end(), static_cast<float>(*number)).ptr
                         : std::to_chars(text.begin(), text.end(), static_cast<std::int64_t>(*number)).ptr;
    return {text.begin(), end};
}

std::string hexText(std::string_view bytes, std::size_t most) {
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text;
    for (const char c : bytes.substr(0, most)) {
        if (!text.empty()) text.push_back(' ');
        text.push_back(kDigits[static_cast<unsigned char>(c) >> 4]);
        text.push_back(kDigits[static_cast<unsigned char>(c) & 15]);
    }
    return bytes.size() > most ? text + " ..." : text;
}

}  // namespace tvk::panel
