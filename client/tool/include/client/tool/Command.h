// A command line that has been understood.
#pragma once

#include <functional>
#include <string>
#include <variant>
#include <vector>

namespace tvk::client {

class Conversation;

struct Options {
    std::string hid;    // path of the link
    std::string clock;  // path of the clock, empty for the machine's time
    bool isJson = false;
};

struct Command {
    Options options;
    // Talks; whatever could be checked before has been.
    std::function<void(Conversation& conversation)> play;
    // Whether the connection is opened before.
    bool isConnecting = true;
    // Whether it lasts until somebody ends it.
    bool isStaying = false;
};

struct HelpText {
    std::string text;
};

// args: without the program's name. Throws ClientError (BadUse).
std::variant<Command, HelpText> parseCommand(const std::vector<std::string>& args);

// A line of a run: the same without the options of the link, which it has already. Does nothing for an empty
// line.
Command parseLine(const std::string& line);

// The words of a line as a shell would split it: blanks, quotes of both kinds, backslashes; "#" begins a
// comment. Throws ClientError (BadUse) for a quote without its end.
std::vector<std::string> splitLine(const std::string& line);

}  // namespace tvk::client
