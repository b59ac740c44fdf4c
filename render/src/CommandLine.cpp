#include "CommandLine.h"

#include <CLI/CLI.hpp>

#include "utility/Exception.h"

namespace tvk::render {

namespace {

constexpr char kDescription[] =
    "Renders a guitar recording through the amplifier's own audio graph, offline.\n"
    "The same command gives the same bytes, at any machine speed.\n\n"
    "  tarvek-render --slot 2 --set idNormalVol=0.4 --in guitar.wav --out amp.wav\n";

// A mistyped command line must not lead to hours of work or to gigabytes of memory.
constexpr double kLongestSeconds = 3600.0;
constexpr int kLongestBlock = 8192;

// Unlike CLI::Range, this also refuses what is not a number.
CLI::Validator between(double least, double most) {
    return CLI::Validator(
        [least, most](std::string& text) {
            double value = 0.0;
            if (CLI::detail::lexical_cast(text, value) && value >= least && value <= most)
                return std::string();
            return tvk::formatText("%s is not a number from %g to %g", text.c_str(), least, most);
        },
        "");
}

void describeGraph(CLI::App& app, CommandLine& line) {
    CLI::Option_group* const graph =
        app.add_option_group("Graph", "What the guitar is played through; one of");
    graph->add_option("--slot", line.slot, "A built-in preset, 0 to 4.\nExample: --slot 2");
    graph->add_option("--preset", line.presetFile, "A preset file.\nExample: --preset mine.json");
    graph->add_option("--unit", line.unit,
                      "One unit by its type id. Graph input i feeds channel i, inputs past the second\n"
                      "repeat 0 and 1; a single output feeds both.\nExample: --unit DU_StereoMixer");
    app.add_option(
           "--set", line.sets,
           "A parameter as the preset is to load it, of a node or of the first; any number of times.\n"
           "Bools are true or false.\nExample: --set idVibratoVol=0.5 --set DUBS_LinearGain_1.bypass=true")
        ->type_name("[NODE.]PARAM=VALUE")
        ->allow_extra_args(false);
    app.add_option("--at", line.changes,
                   "A parameter set live, at the block that holds this time; time 0 is the first written\n"
                   "sample. Any number of times.\nExample: --at 1.5 idNormalVol=0.8")
        ->type_name("SECONDS [NODE.]PARAM=VALUE")
        ->allow_extra_args(false);
}

void describeFiles(CLI::App& app, CommandLine& line) {
    app.add_option("--in", line.inputFile,
                   "The guitar: WAV of 16, 24 or 32 bit integers or 32-bit floats at the engine's rate. One\n"
                   "channel feeds both inputs; of two the first feeds input 0.\nExample: --in guitar.wav")
        ->type_name("FILE.wav");
    app.add_option("--out", line.outputFile,
                   "Both graph outputs as 32-bit floats; sample n is what the graph gave at sample n of the\n"
                   "input.\nExample: --out amp.wav")
        ->type_name("FILE.wav");
    app.add_option("--report", line.reportFile,
                   "Cost per block, levels and warnings as JSON.\nExample: --report amp.json")
        ->type_name("FILE.json");
}

void describeRun(CLI::App& app, CommandLine& line) {
    app.add_option("--settle", line.settleSeconds,
                   "Silence before the input, not written, in whole blocks; 0.2 unless told.\n"
                   "Example: --settle 1")
        ->check(between(0.0, kLongestSeconds))
        ->type_name("SECONDS");
    app.add_option("--tail", line.tailSeconds,
                   "Silence after the input: the output has exactly the frames of both; 0 unless told.\n"
                   "Example: --tail 2.5")
        ->check(between(0.0, kLongestSeconds))
        ->type_name("SECONDS");
    app.add_option("--block", line.blockLength, "Samples a block; 32 unless told.\nExample: --block 64")
        ->check(between(1, kLongestBlock))
        ->type_name("N");
    app.add_option("--rate", line.rateHz,
                   "The engine's sample rate in Hz; 44100 unless told.\nExample: --rate 48000")
        ->check(between(8000, 192000))
        ->type_name("R");
    app.add_option("--input-voltage", line.inputVoltage,
                   "Volts at the jack for a full-scale sample, in place of the product profile's.\n"
                   "Example: --input-voltage 1.2")
        ->check(between(1e-6, 1e6))
        ->type_name("V");
}

}  // namespace

CommandLine parseCommandLine(int argc, const char* const* argv) {
    CommandLine line;
    CLI::App app(kDescription, "tarvek-render");
    app.set_help_flag("--help,-h", "This text.\nExample: --help");
    describeGraph(app, line);
    describeFiles(app, line);
    describeRun(app, line);
    app.add_flag("--list", line.list, "Lists the type ids, one a line.\nExample: --list");
    app.add_option("--describe", line.describe,
                   "Prints a unit's definition, JSON.\nExample: --describe DU_StereoMixer")
        ->type_name("ID");
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        line.helpText = app.help();
    } catch (const CLI::ParseError& fault) {
        TVK_THROW("%s", fault.what());
    }
    return line;
}

}  // namespace tvk::render
