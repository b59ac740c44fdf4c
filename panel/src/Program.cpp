#include "panel/Program.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>
#include <vector>

#include "panel/Failures.h"
#include "panel/PanelCheck.h"
#include "panel/Verbs.h"

namespace tvk::panel {

namespace {

constexpr int kFound = 1;
constexpr int kBadUse = 2;
constexpr int kNoLink = 3;

constexpr const char* kAbout =
    "The amplifier's control processor on a serial line or pseudo-terminal, and a test for real ones.\n"
    "Example: tarvek-panel /dev/ttyUSB0 set PA_4 0.5";

constexpr const char* kUsage = "use tarvek-panel PATH set|watch|replay|serve|check, --help shows each";

std::string footer() {
    std::string text = "\nPins:\n";
    for (const Pin& pin : pins())
        text += std::string("  ") + pin.name + std::string(14 - std::string(pin.name).size(), ' ') +
                pin.meaning + "\n";
    return text +
           "Knobs (PA, PB, PC_0, PC_1) take a number from 0 to 1, all others a whole number. PB_1 above "
           "0.67\n"
           "means that reverb and vibrato are on, above 0.39 vibrato, above 0.105 reverb, below it none.\n"
           "A script has lines SECONDS PIN VALUE; what follows a # says nothing.\n"
           "Status: 0 done, 1 check has found something, 2 bad use, 3 trouble with the line.\n"
           "SIGINT (Ctrl-C) and SIGTERM end what waits, with the status of what was done so far.";
}

struct Arguments {
    std::string path;
    std::vector<std::string> settings;
    std::string script;
    std::string seconds;
    std::int32_t product = 0;
    std::vector<std::string> knobs;
    std::string patience = "1";
};

std::string oneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

// PIN VALUE and PIN=VALUE, in any mixture.
std::vector<Frame> readSettings(const std::vector<std::string>& words) {
    std::vector<Frame> frames;
    for (auto word = words.begin(); word != words.end(); ++word) {
        if (word->find('=') != std::string::npos) {
            frames.push_back(readSetting("set", *word));
            continue;
        }
        const std::string& pin = *word;
        if (++word == words.end()) throw Refusal("set: " + pin + " has no value; such as set PA_4 0.5");
        frames.push_back(readPin("set", pin, *word));
    }
    return frames;
}

Duration readDuration(const std::string& text) {
    if (text.empty()) return std::nullopt;
    return readSeconds("--seconds", text);
}

Script readScript(const std::string& file, std::ostream& err) {
    if (file.empty()) return {};
    Script script = Script::of(loadScriptLines(file));
    for (const std::string& line : script.passedOver)
        err << "tarvek-panel: passed over: " << line << std::endl;
    return script;
}

void addSeconds(CLI::App* verb, Arguments& arguments) {
    verb->add_option("--seconds", arguments.seconds,
                     "How long; until a signal without it. Example: --seconds 10")
        ->type_name("S");
}

struct Verbs {
    CLI::App* set;
    CLI::App* watch;
    CLI::App* replay;
    CLI::App* serve;
    CLI::App* check;
};

Verbs addVerbs(CLI::App& app, Arguments& arguments) {
    Verbs verbs{};
    verbs.set = app.add_subcommand(
        "set", "Send the values of controls.\nExample: tarvek-panel PATH set PA_4 0.5 PB2_AND_PB10 2");
    verbs.set
        ->add_option("PIN VALUE", arguments.settings,
                     "Pins and their values, also as PIN=VALUE. Example: PA_4 0.5 PF_4=1")
        ->required();

    verbs.watch = app.add_subcommand(
        "watch", "Print the frames that come, as a script.\nExample: tarvek-panel PATH watch > evening.txt");
    addSeconds(verbs.watch, arguments);

    verbs.replay = app.add_subcommand(
        "replay",
        "Send the moves of a script at their times.\nExample: tarvek-panel PATH replay evening.txt");
    verbs.replay->add_option("FILE", arguments.script, "Lines SECONDS PIN VALUE. Example: evening.txt")
        ->required();

    verbs.serve = app.add_subcommand(
        "serve",
        "Be the control processor: answer BOOTING (with nothing), GET_PRODUCT_ID and\nGET_CURRENT_VALUES.\n"
        "Example: tarvek-panel PATH serve --product 0 --knob PA_4=0.7");
    verbs.serve
        ->add_option("--product", arguments.product,
                     "Which amplifier this is: 0 to 3; any other is an invalid one. Example: --product 1")
        ->required()
        ->type_name("N");
    verbs.serve
        ->add_option("--knob", arguments.knobs,
                     "Where a control stands, other than for the demonstration; any number of times. "
                     "Example: --knob PB_0=0.7")
        ->type_name("PIN=VALUE")
        ->allow_extra_args(false);
    verbs.serve
        ->add_option("--script", arguments.script,
                     "Moves to make from the first GET_CURRENT_VALUES on. Example: --script evening.txt")
        ->type_name("FILE");
    addSeconds(verbs.serve, arguments);

    verbs.check = app.add_subcommand(
        "check",
        "Play the amplifier to a panel under test: make its requests, judge the answers.\nA line for each "
        "finding. Example: tarvek-panel PATH check");
    verbs.check
        ->add_option("--patience", arguments.patience,
                     "Seconds that an answer may take; 1 without it. Example: --patience 3")
        ->type_name("S");
    return verbs;
}

// All arguments are read before the line is opened.
int run(const Verbs& verbs, const Arguments& arguments, std::ostream& out, std::ostream& err,
        int stopDescriptor) {
    if (*verbs.set) {
        const std::vector<Frame> frames = readSettings(arguments.settings);
        SerialLine line(arguments.path, stopDescriptor);
        setPins(line, frames);
    } else if (*verbs.watch) {
        const Duration duration = readDuration(arguments.seconds);
        SerialLine line(arguments.path, stopDescriptor);
        watch(line, duration, out);
    } else if (*verbs.replay) {
        const Script script = readScript(arguments.script, err);
        SerialLine line(arguments.path, stopDescriptor);
        replay(line, script, out);
    } else if (*verbs.serve) {
        const PinFrames pins = readKnobs(arguments.product, arguments.knobs);
        const Script script = readScript(arguments.script, err);
        const Duration duration = readDuration(arguments.seconds);
        SerialLine line(arguments.path, stopDescriptor);
        out << "# product " << arguments.product << " on " << line.path() << std::endl;
        serve(line, pins, script, duration, out);
    } else {
        const std::chrono::nanoseconds patience = readSeconds("--patience", arguments.patience);
        SerialLine line(arguments.path, stopDescriptor);
        Conversation panel(line);
        return PanelCheck(panel, patience, out).run() == 0 ? 0 : kFound;
    }
    return 0;
}

}  // namespace

int runProgram(int argc, const char* const* argv, std::ostream& out, std::ostream& err, int stopDescriptor) {
    Arguments arguments;
    CLI::App app{kAbout, "tarvek-panel"};
    app.footer(footer());
    app.set_help_flag("-h,--help", "This text. Example: --help");
    app.add_option("PATH", arguments.path,
                   "The line: a serial device, or the slave of a pseudo-terminal such as the uart= of "
                   "tarvek-desk. Example: /dev/ttyUSB0")
        ->required();
    app.require_subcommand(1);
    const Verbs verbs = addVerbs(app, arguments);
    const auto fail = [&](const std::exception& error, int status) {
        err << "tarvek-panel: " << oneLine(error.what()) << std::endl;
        return status;
    };
    try {
        app.parse(argc, argv);
        return run(verbs, arguments, out, err, stopDescriptor);
    } catch (const CLI::CallForHelp&) {
        // Of a verb alone, where one is named.
        out << app.help("",
                        app.get_subcommands().empty() ? CLI::AppFormatMode::All : CLI::AppFormatMode::Normal);
        return 0;
    } catch (const CLI::ParseError& error) {
        return fail(Refusal(std::string(error.what()) + "; " + kUsage), kBadUse);
    } catch (const Refusal& error) {
        return fail(error, kBadUse);
    } catch (const LinkTrouble& error) {
        return fail(error, kNoLink);
    }
}

}  // namespace tvk::panel
