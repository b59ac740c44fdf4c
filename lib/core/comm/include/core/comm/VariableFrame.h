// One frame of the serial link to the control processor: one named, typed value.
//
//   0xF7  type (2)  name  NUL  value  CRC (2)  0x7F
//
// Numbers are little-endian. The CRC is CRC-16/XMODEM of type, name with its NUL, and value. Each byte
// between start and end that equals a start, an end or an escape is sent behind an escape, unchanged; the CRC
// is formed before that.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace tvk::comm {

inline constexpr std::uint8_t kFrameStart = 0xF7;
inline constexpr std::uint8_t kFrameEnd = 0x7F;
inline constexpr std::uint8_t kFrameEscape = 0x7D;

// What each direction holds of one frame: a whole one as it is sent, or all between start and end as it was
// before it was escaped.
inline constexpr std::size_t kFrameBufferBytes = 128;

// The codes are those of the frame's type field.
enum class VariableType : std::uint16_t {
    Float = 0,  // IEEE 754, 4 bytes
    Uint8 = 1,
    Uint16 = 2,
    Uint32 = 3,
    Int8 = 4,
    Int16 = 5,
    Int32 = 6,
    String = 7  // at least one byte, no NUL behind them
};

// The views lie in the bytes that were decoded.
struct VariableFrame {
    VariableType type;
    std::string_view name;
    std::span<const std::uint8_t> value;
};

// content: all between start and end, without escapes, CRC included. None for a frame that is to be dropped:
// shorter than its parts, no or an empty name, a CRC that differs, a type that is not known, a value that has
// not the size of its type, a float that is not finite. Any thread.
std::optional<VariableFrame> decodeFrame(std::span<const std::uint8_t> content);

// The little-endian number in bytes, of at most 4.
std::uint32_t readLittleEndian(std::span<const std::uint8_t> bytes);

}  // namespace tvk::comm
