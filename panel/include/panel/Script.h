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

// A line that says something, in words.
struct ScriptLine {
    std::string where;  // "FILE:LINE"
    std::chrono::nanoseconds at;
    std::vector<std::string> words;  // behind the time; what cannot be printed is escaped
};

// In the file's order. name: of the file, for messages. Throws Refusal for a line that does not begin with a
// time, and for a file that cannot be read.
std::vector<ScriptLine> readScriptLines(std::istream& text, const std::string& name);
std::vector<ScriptLine> loadScriptLines(const std::string& file);

struct Script {
    struct Move {
        std::chrono::nanoseconds at;
        Frame frame;
    };

    std::vector<Move> moves;              // by time; those of one moment in their order
    std::vector<std::string> passedOver;  // "FILE:LINE: button ..."

    // Throws Refusal with file, line and reason.
    static Script of(const std::vector<ScriptLine>& lines);
};

// A year: beyond it counts would still hold, but nobody means it.
constexpr std::chrono::hours kLongestTime{366 * 24};

// "12.5" as a time. Throws Refusal, unless it is from 0 to kLongestTime.
std::chrono::nanoseconds readSeconds(const std::string& where, const std::string& text);

}  // namespace tvk::panel
