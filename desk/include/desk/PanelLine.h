// The serial line between the amplifier and its panel: a simulated control processor, or another program that
// opens the line, or both.
//
// All that the amplifier sends goes to both, and is kept for the program until it reads. What the two send
// goes to the amplifier as it comes. One thread.
#pragma once

#include <optional>
#include <string>

#include "desk/PseudoTerminal.h"
#include "panel/ControlProcessor.h"
#include "panel/FrameScanner.h"

namespace tvk::desk {

class PanelLine {
public:
    // Without a control processor the line is the other program's alone. Throws Refusal when the system has
    // no terminal left.
    explicit PanelLine(std::optional<panel::ControlProcessor> simulated) : simulated_(std::move(simulated)) {}

    // What the amplifier opens, and what the other program opens.
    const std::string& amplifierPath() const { return amplifier_.path(); }
    const std::string& programPath() const { return program_.path(); }

    // Carries all that has been sent since the last call; false when that is nothing.
    bool exchange();

    // The simulated control processor, where there is one, reports a control's move.
    void move(const panel::Frame& frame);

private:
    void send(const panel::Frame& frame);

    std::optional<panel::ControlProcessor> simulated_;
    panel::FrameScanner requests_;
    PseudoTerminal amplifier_;
    PseudoTerminal program_;
};

}  // namespace tvk::desk
