// One named value of the serial line, and its bytes there (docs/panel_protocol.md).
//
// Texts and bytes are std::string; a value is its bytes as they go over the line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tvk::panel {

// A frame as it is sent, and all between its start and its end before it was escaped, take no more.
inline constexpr std::size_t kLongestFrame = 128;

inline constexpr char kStart = '\xF7';
inline constexpr char kEnd = '\x7F';
inline constexpr char kEscape = '\x7D';

// Type codes.
inline constexpr int kFloat = 0;
inline constexpr int kInt32 = 6;
inline constexpr int kString = 7;

struct Frame {
    int type;
    std::string name;
    std::string value;

    bool operator==(const Frame&) const = default;
};

Frame floatFrame(const std::string& name, float value);
Frame intFrame(const std::string& name, std::int32_t value);

// The whole frame. None if it is longer than the longest, or has no name or a NUL in it.
std::optional<std::string> encode(const Frame& frame);

// What encloses and escapes any content; the CRC is the caller's.
std::string enclose(std::string_view content);

// Type, name and value with the CRC behind them, not escaped.
std::string contentOf(const Frame& frame);

// A content taken apart, or why it is no good frame.
struct Parsed {
    std::optional<Frame> frame;
    std::string fault;
};
Parsed parse(std::string_view content);

// The value of the types 0 to 6; none for a text.
std::optional<double> numberOf(const Frame& frame);

// "float", "int32" and so on.
std::string typeName(int type);

// The value as text: the shortest number that reads back as the same, or the text in quotes.
std::string valueText(const Frame& frame);

// "f7 06 00", at most so many bytes of them and "..." for the rest.
std::string hexText(std::string_view bytes, std::size_t most = 40);

}  // namespace tvk::panel
