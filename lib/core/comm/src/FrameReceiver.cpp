#include "core/comm/FrameReceiver.h"

namespace tvk::comm {

bool FrameReceiver::receive(std::uint8_t byte) {
    if (state_ == State::Escape) {
        keep(byte);
        return false;
    }
    if (byte == kFrameStart) {
        length_ = 0;
        state_ = State::InFrame;
        return false;
    }
    if (state_ == State::Idle) return false;
    if (byte == kFrameEnd) {
        state_ = State::Idle;
        return true;
    }
    if (byte == kFrameEscape)
        state_ = State::Escape;
    else
        keep(byte);
    return false;
}

void FrameReceiver::keep(std::uint8_t byte) {
    if (length_ == buffer_.size()) {
        state_ = State::Idle;
        return;
    }
    buffer_[length_++] = byte;
    state_ = State::InFrame;
}

}  // namespace tvk::comm
