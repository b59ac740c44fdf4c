// The desk program's command line.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "desk/PanelKnob.h"
#include "desk/soundcard/Fault.h"
#include "desk/soundcard/VirtualCard.h"

namespace tvk::desk {

struct Options {
    std::optional<std::string> inFile;
    std::optional<std::string> outFile;
    std::optional<std::string> reportFile;
    bool loop = false;
    std::optional<double> seconds;
    std::optional<int> slot = 2;  // none loads nothing
    PanelKnobs knobs = demonstrationKnobs();
    std::optional<std::string>
        cabinet;  // as the parameter idCabinet takes it; the demonstration's when not given
    std::filesystem::path root;
    VirtualCard::ClockMode clock = VirtualCard::ClockMode::Real;
    std::vector<Fault> faults;

    // Returns nothing when help was asked for, and was printed. Throws Refusal for a command line that does
    // not make sense.
    static std::optional<Options> parse(int argc, const char* const* argv);
};

}  // namespace tvk::desk
