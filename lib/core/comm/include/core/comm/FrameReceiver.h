// Cuts the bytes of the serial link into frames.
//
//   idle      0xF7: in frame, empty      others: nothing
//   in frame  0xF7: in frame, empty      0x7F: the frame is complete, idle
//             0x7D: escape               others: kept
//   escape    kept, in frame
//
// A frame that does not fit is dropped: the receiver is idle until the next start. So a fault costs the frame
// it is in; only a fault that leaves an escape as the last byte takes the next frame's start with it. A
// sender that is not sure of the state sends an end first.
//
// One thread at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "core/comm/VariableFrame.h"

namespace tvk::comm {

class FrameReceiver {
public:
    // True when the byte completes a frame, which content then holds until the next call.
    bool receive(std::uint8_t byte);

    // All between start and end, without escapes.
    std::span<const std::uint8_t> content() const { return {buffer_.data(), length_}; }

private:
    enum class State { Idle, InFrame, Escape };

    void keep(std::uint8_t byte);

    State state_ = State::Idle;
    std::array<std::uint8_t, kFrameBufferBytes> buffer_{};
    std::size_t length_ = 0;
};

}  // namespace tvk::comm
