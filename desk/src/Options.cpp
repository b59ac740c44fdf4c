#include "desk/Options.h"

#include <CLI/CLI.hpp>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <unistd.h>

#include "desk/Refusal.h"
#include "panel/Script.h"

namespace tvk::desk {

namespace {

std::filesystem::path defaultRoot() {
    return std::filesystem::temp_directory_path() / ("tarvek-desk-" + std::to_string(getuid()));
}

// The product whose amplifier lies in each slot; that of the test slot is none that is sold.
constexpr std::array<std::int32_t, 5> kProductOfSlot = {-1, 1, 0, 2, 3};

std::optional<std::int32_t> productOfSlot(const std::string& text) {
    if (text == "none") return std::nullopt;
    if (text.size() == 1 && text[0] >= '0' && text[0] <= '4')
        return kProductOfSlot[static_cast<std::size_t>(text[0] - '0')];
    throw Refusal("--slot " + text + ": a slot is 0 to 4 or none");
}

VirtualCard::ClockMode readClock(const std::string& text) {
    if (text == "real") return VirtualCard::ClockMode::Real;
    if (text == "virtual") return VirtualCard::ClockMode::Virtual;
    throw Refusal("--clock " + text + ": a clock is real or virtual");
}

// The cable's faults are the script's.
std::optional<ScriptEvent> readCableFault(const std::string& text) {
    const std::size_t at = text.find('@');
    const std::string what = text.substr(0, at);
    if (at == std::string::npos || (what != "hid-unplug" && what != "hid-plug")) return std::nullopt;
    ScriptEvent event;
    event.kind = what == "hid-plug" ? ScriptEvent::Kind::Plug : ScriptEvent::Kind::Unplug;
    event.at = panel::readSeconds("--fault " + text, text.substr(at + 1));
    return event;
}

Fault readFault(const std::string& text) {
    try {
        return Fault::parse(text);
    } catch (const std::invalid_argument& fault) {
        throw Refusal(std::string("--fault: ") + fault.what());
    }
}

constexpr double kMostSeconds = std::chrono::duration<double>(panel::kLongestTime).count();

void refuseDuration(double seconds) {
    if (!std::isfinite(seconds) || seconds <= 0.0 || seconds > kMostSeconds)
        throw Refusal("--seconds: a duration is more than 0 and at most a year");
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
    "PA_4 PA_1 PA_2 PA_3 PF_4 those of the vibrato channel, PA_0 reverb, PC_1 speed, PC_0 intensity,\n"
    "PB_1 the footswitches' voltage (reverb and vibrato on above 0.67, vibrato alone above 0.39, reverb "
    "alone\n"
    "above 0.105, else none), PB2_AND_PB10 the cabinet switch (0 to 2), PC_10 standby, PF0_AND_PF1 (scripts\n"
    "only) the product straps.\n"
    "The line \"ready\" names what other programs may open: uart (a serial line), hid (a socket, one packet "
    "a\n"
    "report of 64 bytes), button (write 1 or 0 and a newline), clock (with --hold; write run SECONDS).\n"
    "SIGUSR1 stops in order, SIGINT (Ctrl-C) at once; both with status 0. Bad use ends with status 2.";

}  // namespace

std::optional<Options> Options::parse(int argc, const char* const* argv) {
    Options options;
    std::optional<std::string> slot;
    std::optional<std::int32_t> product;
    std::optional<std::string> script;
    bool isHostDetached = false;
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
                   "given, and until a signal without a guitar. Example: --seconds 10")
        ->type_name("S");
    app.add_option(
           "--product", product,
           "The product that the panel reports: 0 to 3, any other number for a panel whose straps make "
           "no sense; 0 is the flagship and the default. Example: --product 0")
        ->type_name("N");
    app.add_option(
           "--slot", slot,
           "The same by the built-in preset that it loads, 0 to 4, 0 being the test mode's; none for a "
           "panel that keeps silent. Example: --slot none")
        ->type_name("N");
    app.add_option(
           "--knob", knobs,
           "Where a control of the panel stands at the start, by its pin: knobs 0 to 1, switches whole "
           "numbers; any number of times. Pins not named stand as for the demonstration. Example: --knob "
           "PB_0=0.7")
        ->type_name("PIN=VALUE")
        ->allow_extra_args(false);
    app.add_option(
           "--script", script,
           "What happens while it plays, one event a line: SECONDS PIN VALUE, SECONDS button 1|0, "
           "SECONDS hid HEX (a report from the host), SECONDS plug, SECONDS unplug. Example: --script "
           "evening.txt")
        ->type_name("FILE");
    app.add_flag("--external-panel", options.isPanelExternal,
                 "No simulated panel: another program is the panel, on the serial line that the ready line "
                 "names. Example: --external-panel");
    app.add_flag("--no-host", isHostDetached,
                 "The USB cable is not plugged in at the start. Example: --no-host");
    app.add_flag("--hold", options.isHeld,
                 "With --clock virtual: from the guitar's start, or from the ready line with "
                 "--external-panel, time moves only as another program asks for it on the clock socket. "
                 "Example: --hold");
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
           "period N, for M periods); or with the cable, in seconds: hid-unplug@S, hid-plug@S. Example: "
           "--fault gone@1000+50")
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

    if (options.seconds) refuseDuration(*options.seconds);
    if (product && slot)
        throw Refusal("--product and --slot both say which amplifier it is; give one of them");
    options.product = slot ? productOfSlot(*slot) : product.value_or(0);
    options.pins = panel::readKnobs(options.product.value_or(0), knobs);
    if (!options.product) options.pins.erase(panel::kProductPin);
    options.clock = readClock(clock);
    if (options.isHeld && options.clock != VirtualCard::ClockMode::Virtual)
        throw Refusal("--hold: only a virtual clock can be held; add --clock virtual");
    options.isHostPlugged = !isHostDetached;
    options.root = root;
    if (script) options.script = Script::load(*script);
    for (const std::string& text : faults) {
        if (const std::optional<ScriptEvent> cable = readCableFault(text))
            options.script.add(*cable);
        else
            options.faults.push_back(readFault(text));
    }
    return options;
}

}  // namespace tvk::desk
