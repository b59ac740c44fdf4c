// The control processor of an amplifier that is not there: it says which amplifier this is and where the
// controls stand when it is asked, and reports every change.
//
// Bytes in, bytes out; who owns the line carries them. One thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/comm/FrameBuilder.h"
#include "core/comm/FrameReceiver.h"
#include "desk/PanelPins.h"

namespace tvk::desk {

class ControlProcessor {
public:
    using Bytes = std::vector<std::uint8_t>;

    // product: what it reports, or nothing for one that keeps silent about it.
    ControlProcessor(std::optional<int> product, PanelPins pins);

    // Takes what the amplifier has sent; the answer to it.
    Bytes hear(std::span<const std::uint8_t> sent);

    // Moves a control; the frame that reports it.
    Bytes move(const std::string& pin, float value);

private:
    Bytes answer(std::string_view request);
    Bytes frame(const std::string& pin, float value);

    const std::optional<int> product_;
    PanelPins pins_;
    comm::FrameReceiver receiver_;
    comm::FrameBuilder builder_;
};

}  // namespace tvk::desk
