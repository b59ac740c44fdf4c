// The desk program's command line.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "desk/Script.h"
#include "desk/soundcard/Fault.h"
#include "desk/soundcard/VirtualCard.h"
#include "panel/Pins.h"

namespace tvk::desk {

struct Options {
    std::optional<std::string> inFile;
    std::optional<std::string> outFile;
    std::optional<std::string> reportFile;
    bool loop = false;
    std::optional<double> seconds;
    std::optional<std::int32_t> product = 0;  // what the panel reports; none: it keeps silent about it
    panel::PinFrames pins;                    // without the straps then
    bool isPanelExternal = false;
    bool isHostPlugged = true;
    Script script;
    bool isHeld = false;
    std::filesystem::path root;
    VirtualCard::ClockMode clock = VirtualCard::ClockMode::Real;
    std::vector<Fault> faults;

    // Returns nothing when help was asked for, and was printed. Throws Refusal, or panel::Refusal, for a
    // command line that does not make sense.
    static std::optional<Options> parse(int argc, const char* const* argv);
};

}  // namespace tvk::desk
