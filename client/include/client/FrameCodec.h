// Messages to frames and back.
//
// A frame: the tag ('3' first of several, '4' one in between, '5' last or only), the number of message bytes
// in it (two bytes, high one first), those bytes, zeros. All but the last are full.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "client/Bytes.h"

namespace tvk::client {

// None for a message of no bytes or of more than kMaxMessageBytes: there are no frames for it.
std::vector<Frame> framesOf(std::span<const std::uint8_t> message);

// Puts messages together from frames of a peer that may send anything. A frame that breaks the rules is
// dropped together with what it was to complete, and the next first or only frame begins anew.
class FrameAssembler {
public:
    // One frame, with or without padding; the message that it completes.
    std::optional<Bytes> add(std::span<const std::uint8_t> frame);

    // Frames dropped so far.
    std::size_t getDropped() const { return dropped_; }

private:
    struct Part;
    static std::optional<Part> parse(std::span<const std::uint8_t> frame);
    bool fits(const Part& part) const;

    Bytes message_;  // what has come of it, empty between messages
    std::size_t dropped_ = 0;
};

// Reports to frames and back.
Report reportOf(const Frame& frame);
std::optional<Frame> frameOf(const Report& report);  // none when the id byte is not zero

}  // namespace tvk::client
