#include "client/tool/Command.h"

#include <algorithm>

#include "Grammar.h"
#include "client/ClientError.h"
#include "utility/EscapedText.h"

namespace tvk::client {

namespace {

constexpr const char* kAbout =
    "A desktop client of the amplifier.\n"
    "The link (--hid) is the socket that tarvek-desk names in its ready line, or the /dev/hidrawN of an "
    "amplifier on\n"
    "USB. Each verb has a --help.";

constexpr const char* kFooter =
    "\nExample: tarvek-client --hid /run/hid amp\n"
    "Status: 0 done, 1 refused by the amplifier, 2 bad use, 3 no link or no answer in time.";

// The library's message on one line.
std::string oneLine(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    return text;
}

// The library looks for what is missing before it looks at what is too much; a word that is no verb is both.
std::string faultOf(const CLI::App& app, const CLI::ParseError& error) {
    const std::vector<std::string> strange = app.remaining(true);
    const bool isVerbMissing = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
    if (isVerbMissing && !strange.empty())
        return "\"" + escaped(strange.front()) + "\" is not understood here";
    return escaped(oneLine(error.what()));
}

// Of the innermost verb that the words name.
std::string helpOf(const CLI::App& app) {
    const CLI::App* verb = &app;
    std::string name = app.get_name();
    while (!verb->get_subcommands().empty()) {
        verb = verb->get_subcommands().front();
        name += " " + verb->get_name();
    }
    return verb->help(name.substr(0, name.rfind(' ') == std::string::npos ? 0 : name.rfind(' ')));
}

std::variant<Command, HelpText> parse(std::vector<std::string> args, bool isLine) {
    Command command;
    CLI::App app{kAbout, "tarvek-client"};
    app.footer(kFooter);
    Grammar grammar(app, command, isLine);
    grammar.build();
    std::ranges::reverse(args);
    try {
        app.parse(args);
    } catch (const CLI::CallForHelp&) {
        return HelpText{helpOf(app)};
    } catch (const CLI::ParseError& error) {
        throw ClientError(Failure::BadUse, faultOf(app, error) + "; --help tells how it is used");
    }
    return command;
}

}  // namespace

std::variant<Command, HelpText> parseCommand(const std::vector<std::string>& args) {
    return parse(args, false);
}

Command parseLine(const std::string& line) {
    const std::vector<std::string> words = splitLine(line);
    if (words.empty()) return {{}, [](Conversation&) {}, false};
    std::variant<Command, HelpText> parsed = parse(words, true);
    if (std::holds_alternative<HelpText>(parsed))
        throw ClientError(Failure::BadUse, "--help is for the command line");
    return std::get<Command>(std::move(parsed));
}

}  // namespace tvk::client
