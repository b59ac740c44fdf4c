// The tool's command line.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tvk::render {

struct CommandLine {
    std::optional<int> slot;
    std::string presetFile;
    std::string unit;
    std::vector<std::string> sets;
    std::vector<std::pair<double, std::string>> changes;
    std::string inputFile;
    std::string outputFile;
    std::string reportFile;
    double settleSeconds = 0.2;
    double tailSeconds = 0.0;
    int blockLength = 32;
    int rateHz = 44100;
    std::optional<float> inputVoltage;
    bool list = false;
    std::string describe;

    // Empty, or the text that --help asks for.
    std::string helpText;
};

// Throws tvk::Exception with one line for a command line that is not understood.
CommandLine parseCommandLine(int argc, const char* const* argv);

}  // namespace tvk::render
