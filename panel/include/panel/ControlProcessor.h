// What a control processor knows and answers: where the controls stand, and which amplifier this is.
#pragma once

#include <string>
#include <vector>

#include "panel/Frame.h"
#include "panel/Pins.h"

namespace tvk::panel {

class ControlProcessor {
public:
    explicit ControlProcessor(PinFrames pins) : pins_(std::move(pins)) {}

    // GET_PRODUCT_ID is answered with the straps, if they are among the pins, GET_CURRENT_VALUES with every
    // other pin, by name; nothing else is.
    std::vector<Frame> answer(const Frame& request) const;

    // A control moves; its frame is to be sent.
    void move(const Frame& frame) { pins_.insert_or_assign(frame.name, frame); }

private:
    PinFrames pins_;
};

}  // namespace tvk::panel
