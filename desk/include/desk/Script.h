// What happens at the amplifier's doors in the course of an evening, one event a line:
//
//   SECONDS PIN VALUE      a control of the panel moves
//   SECONDS button 1|0     the back panel's button goes down or up
//   SECONDS hid HEX        the host sends a report: at most 64 bytes, zeros fill it up
//   SECONDS unplug         the USB cable is pulled
//   SECONDS plug           and put back
//
// SECONDS count from the guitar's start. Empty lines and what follows a # say nothing.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "panel/Frame.h"

namespace tvk::desk {

using HidReport = std::array<std::uint8_t, 64>;

struct ScriptEvent {
    enum class Kind { Pin, Button, Report, Unplug, Plug };
    std::chrono::nanoseconds at{0};
    Kind kind = Kind::Pin;
    std::optional<panel::Frame> frame;  // of Pin alone
    bool isDown = false;                // of Button alone
    HidReport report{};                 // of Report alone
};

// By time; those of one moment in their order.
class Script {
public:
    Script() = default;

    // Throws Refusal, or panel::Refusal, with file, line and reason for a line that is none of the above.
    static Script load(const std::string& file);

    // Behind the events of the same moment.
    void add(const ScriptEvent& event);

    bool hasReports() const;

    // The next event that is due at that time, or null.
    const ScriptEvent* take(std::chrono::nanoseconds now);

private:
    std::vector<ScriptEvent> events_;
    std::size_t next_ = 0;
};
}  // namespace tvk::desk
