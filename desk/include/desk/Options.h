// The desk program's command line.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "desk/PanelPins.h"
#include "desk/Script.h"
#include "desk/soundcard/Fault.h"
#include "desk/soundcard/VirtualCard.h"

namespace tvk::desk {

struct Options {
    std::optional<std::string> inFile;
    std::optional<std::string> outFile;
    std::optional<std::string> reportFile;
    bool loop = false;
    std::optional<double> seconds;
    std::optional<int> product = 0;  // what the panel reports; none for a panel that keeps silent about it
    PanelPins knobs = demonstrationPins();
    bool isPanelExternal = false;
    bool isHostPlugged = true;
    Script script;
    bool isHeld = false;
    std::filesystem::path root;
    VirtualCard::ClockMode clock = VirtualCard::ClockMode::Real;
    std::vector<Fault> faults;

    // Returns nothing when help was asked for, and was printed. Throws Refusal for a command line that does
    // not make sense.
    static std::optional<Options> parse(int argc, const char* const* argv);
};

}  // namespace tvk::desk
