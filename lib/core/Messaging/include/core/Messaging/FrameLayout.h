// How a frame lies on the wire.
//
//   byte 0      tag: start '3', continue '4', end '5'
//   bytes 1, 2  number of payload bytes in this frame, high byte first
//   from 3 on   the payload
//
// What lies behind the payload is padding. A message that fits in one frame is one end frame.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tvk {

namespace frame {

constexpr std::uint8_t kStartTag = 0x33;
constexpr std::uint8_t kContinueTag = 0x34;
constexpr std::uint8_t kEndTag = 0x35;
constexpr std::size_t kHeaderSize = 3;

// The largest payload that the two size bytes can tell.
constexpr std::size_t kLargestPayload = 0xFFFF;

// Payload bytes in a frame of maxFrameSize bytes. More than kLargestPayload is an error in the log, and
// limited to that.
std::size_t payloadRoom(std::size_t maxFrameSize);

}  // namespace frame

enum class CompositionMode {
    Framed = 0,    // each frame is passed in whole
    Streaming = 1  // bytes arrive in arbitrary pieces; every message is one end frame
};

}  // namespace tvk
