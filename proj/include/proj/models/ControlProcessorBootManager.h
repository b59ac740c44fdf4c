// The lines to the control processor that read its reset and its boot mode, and the button's line: set up for
// use by shell commands on the GPIO files.
//
// Control threads, one at a time; each command blocks until its shell has ended.
#pragma once

#include <functional>
#include <string>

class ControlProcessorBootManager {
public:
    // Runs one shell command and returns what system(3) would.
    using Shell = std::function<int(const std::string& command)>;

    // Exports lines 3 (reset), 6 (boot mode) and 110 (the button: input, both edges, active low). What the
    // shell returns is in the log and nothing more: without the lines the program runs on.
    ControlProcessorBootManager(Shell shell, std::string gpioRoot);

    // Starts the control processor in its update mode: reset low, boot mode high, reset high.
    void resetAndBootUpdateMode();

private:
    int write(const std::string& text, const std::string& file) const;

    const Shell shell_;
    const std::string gpioRoot_;
};
