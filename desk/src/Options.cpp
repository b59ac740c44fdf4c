#include "desk/Options.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>
#include <stdexcept>
#include <unistd.h>

#include "desk/Refusal.h"

namespace tvk::desk {

namespace {

// A year of sound; beyond it frame counts would still hold, but nobody means it.
constexpr double kMostSeconds = 366.0 * 24.0 * 3600.0;

std::filesystem::path defaultRoot() {
    return std::filesystem::temp_directory_path() / ("tarvek-desk-" + std::to_string(getuid()));
}

std::optional<int> readSlot(const std::string& text) {
    if (text == "none") return std::nullopt;
    if (text.size() == 1 && text[0] >= '0' && text[0] <= '4') return text[0] - '0';
    throw Refusal("--slot " + text + ": a slot is 0 to 4 or none");
}

VirtualCard::ClockMode readClock(const std::string& text) {
    if (text == "real") return VirtualCard::ClockMode::Real;
    if (text == "virtual") return VirtualCard::ClockMode::Virtual;
    throw Refusal("--clock " + text + ": a clock is real or virtual");
}

Fault readFault(const std::string& text) {
    try {
        return Fault::parse(text);
    } catch (const std::invalid_argument& fault) {
        throw Refusal(std::string("--fault: ") + fault.what());
    }
}

double readSeconds(double seconds) {
    if (!std::isfinite(seconds) || seconds <= 0.0 || seconds > kMostSeconds)
        throw Refusal("--seconds: a duration is more than 0 and at most a year");
    return seconds;
}

// The library's message on one line.
std::string oneLine(std::string text) {
    for (char& c : text)
        if (c == '\n') c = ' ';
    return text;
}

constexpr const char* kAbout =
    "The amplifier on a desk: the whole process on a virtual sound card, fed from a file.\n"
    "Example: tarvek-desk --in guitar.wav --out amp.wav --clock virtual";

constexpr const char* kFooter =
    "\nPins: PB_0 PA_5 PA_6 PA_7 PF_5 are volume, bass, middle, treble and bright of the normal channel,\n"
    "PA_4 PA_1 PA_2 PA_3 PF_4 those of the vibrato channel, PA_0 reverb, PC_1 speed, PC_0 intensity.\n"
    "SIGUSR1 stops in order, SIGINT (Ctrl-C) at once; both with status 0. Bad use ends with status 2.";

}  // namespace

std::optional<Options> Options::parse(int argc, const char* const* argv) {
    Options options;
    std::string slot = "2";
    std::string clock = "real";
    std::string root = defaultRoot().string();
    std::vector<std::string> knobs;
    std::vector<std::string> faults;

    CLI::App app{kAbout, "tarvek-desk"};
    app.footer(kFooter);
    app.set_help_flag("-h,--help", "This text. Example: --help");
    app.add_option("--in", options.inFile,
                   "The guitar: WAV at 44100 Hz, one channel for both inputs or two for normal and vibrato; "
                   "silence without it. Example: --in riff.wav")
        ->type_name("FILE.wav");
    app.add_flag("--loop", options.loop, "Start the guitar again at its end, for ever. Example: --loop");
    app.add_option("--out", options.outFile,
                   "What the amplifier plays: channel 0 speaker feed, channel 1 line feed, 32-bit float. "
                   "Example: --out amp.wav")
        ->type_name("FILE.wav");
    app.add_option("--seconds", options.seconds,
                   "How long to play; the guitar's length and one second more if neither this nor --loop is "
                   "given. Example: --seconds 10")
        ->type_name("S");
    app.add_option("--slot", slot,
                   "Built-in preset to load once the engine runs, 0 to 4 or none; 2 is the flagship and the "
                   "default. Example: --slot none")
        ->type_name("N");
    app.add_option(
           "--knob", knobs,
           "A panel control by its pin, after the preset: knobs 0 to 1, switches 0 or 1; any number of "
           "times. Pins not named stand as for the demonstration. Example: --knob PB_0=0.7")
        ->type_name("PIN=VALUE")
        ->allow_extra_args(false);
    app.add_option("--cabinet", options.cabinet,
                   "The line feed's cabinet response, after the preset: a path on the amplifier without its "
                   ".wav, the name of a user response, or none. Example: --cabinet none")
        ->type_name("NAME");
    app.add_option("--root", root,
                   "Holds the stand-ins for /home/root and /mnt/user-data; filled with product data when "
                   "empty. The default is a folder for temporary files. Example: --root out/root")
        ->type_name("DIR");
    app.add_option("--clock", clock,
                   "real: the machine's time. virtual: the card's time moves with the transfers, as fast as "
                   "they are computed, and every run is the same. Example: --clock virtual")
        ->type_name("real|virtual");
    app.add_option("--report", options.reportFile,
                   "Time per block, xruns and levels, as JSON. Example: --report timing.json")
        ->type_name("FILE.json");
    app.add_option(
           "--fault", faults,
           "Trouble with the card, counted in periods of 32 frames from the guitar's start; any number "
           "of times: xrun-capture@N, xrun-playback@N, short-read@N, gone@N+M (gone at the end of "
           "period N, for M periods). Example: --fault gone@1000+50")
        ->type_name("SPEC")
        ->allow_extra_args(false);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        std::printf("%s", app.help().c_str());
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        throw Refusal(oneLine(error.what()));
    }

    if (options.seconds) readSeconds(*options.seconds);
    options.slot = readSlot(slot);
    options.clock = readClock(clock);
    options.root = root;
    for (const std::string& text : knobs)
        readKnob(text, options.knobs);
    for (const std::string& text : faults)
        options.faults.push_back(readFault(text));
    return options;
}

}  // namespace tvk::desk
