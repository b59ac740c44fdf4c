// Bytes, and the sizes that the link fixes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tvk::client {

using Bytes = std::vector<std::uint8_t>;

// A serialised message, inclusive.
inline constexpr std::size_t kMaxMessageBytes = 32768;

// A frame as it fills a report, padding included: three bytes of head and up to 60 of a message.
inline constexpr std::size_t kFrameBytes = 63;
using Frame = std::array<std::uint8_t, kFrameBytes>;

// A HID report as the host sees it. From the amplifier: a zero id byte and the frame. Towards it: the frame
// from byte 0, the last byte unused.
inline constexpr std::size_t kReportBytes = 64;
using Report = std::array<std::uint8_t, kReportBytes>;

}  // namespace tvk::client
