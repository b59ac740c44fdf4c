// What the panel does in the course of time, one move a line:
//
//   SECONDS PIN VALUE
//
// in any order; empty lines and what follows a # say nothing. A script for tarvek-desk may also hold lines
// with button, hid, plug and unplug in place of a pin: no control of the panel, so they are passed over.
#pragma once

#include <chrono>
#include <istream>
#include <string>
#include <vector>

#include "panel/Frame.h"

namespace tvk::panel {

struct Script {
    struct Move {
        std::chrono::nanoseconds at;
        Frame frame;
    };

    std::vector<Move> moves;              // by time; those of one moment in their order
    std::vector<std::string> passedOver;  // "FILE:LINE: button ..."

    // name: of the file, for messages. Throws Refusal with file, line and reason.
    static Script read(std::istream& text, const std::string& name);
    static Script load(const std::string& file);
};

// "12.5" as a time. Throws Refusal, unless it is from 0 to a year.
std::chrono::nanoseconds readSeconds(const std::string& where, const std::string& text);

}  // namespace tvk::panel
