// What the program does on a line.
//
// One thread. All throw LinkTrouble when the line fails; those that wait end early, without a fault, when the
// line is told to stop. Times in the output are seconds since the verb began.
#pragma once

#include <chrono>
#include <optional>
#include <ostream>
#include <vector>

#include "panel/Pins.h"
#include "panel/Script.h"
#include "panel/SerialLine.h"

namespace tvk::panel {

// None: for ever.
using Duration = std::optional<std::chrono::nanoseconds>;

// Sends the frames.
void setPins(SerialLine& line, const std::vector<Frame>& frames);

// Prints the frames that come, and what is wrong with others. The text is a script: what no script can hold
// is behind a #.
void watch(SerialLine& line, Duration duration, std::ostream& out);

// Sends each move at its time, and prints it; what comes meanwhile is let go.
void replay(SerialLine& line, const Script& script, std::ostream& out);

// Is the control processor: answers, and plays the script from the first request for the values on. Prints
// every request.
void serve(SerialLine& line, const PinFrames& pins, const Script& script, Duration duration,
           std::ostream& out);

}  // namespace tvk::panel
