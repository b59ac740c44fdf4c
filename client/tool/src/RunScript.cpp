#include "client/tool/RunScript.h"

#include <algorithm>
#include <poll.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "client/ClientError.h"
#include "client/tool/Conversation.h"
#include "client/tool/TextFile.h"
#include "utility/EscapedText.h"

namespace tvk::client {

namespace {

// How long the connection is looked after between two looks at the standard input.
constexpr std::chrono::milliseconds kLook{20};
constexpr std::size_t kLongestLine = 65536;

ClientError atLine(int number, const ClientError& error) {
    return {error.getFailure(), "line " + std::to_string(number) + ": " + error.what()};
}

// command: gives the command, or throws.
template <typename Understand>
void play(Conversation& conversation, int number, bool isKeptGoing, Understand command) {
    try {
        const Command understood = command();
        if (understood.isConnecting) conversation.connect();
        understood.play(conversation);
    } catch (const ClientError& error) {
        if (!isKeptGoing) throw atLine(number, error);
        conversation.fail(atLine(number, error));
    }
}

// Lines of the standard input; the connection is kept meanwhile.
class InputLines {
public:
    explicit InputLines(Conversation& conversation) : conversation_(conversation) {}

    // False at the end.
    bool next(std::string& line) {
        std::size_t end = 0;
        while ((end = buffer_.find('\n')) == std::string::npos) {
            if (buffer_.size() > kLongestLine)
                throw ClientError(Failure::BadUse, "a line of the standard input does not end");
            if (!readMore()) return takeRest(line);
        }
        line = buffer_.substr(0, end);
        buffer_.erase(0, end + 1);
        return true;
    }

private:
    bool readMore() {
        pollfd input{STDIN_FILENO, POLLIN, 0};
        const int forever = -1;
        const int limit = conversation_.clock().runsByItself() ? 0 : forever;
        while (::poll(&input, 1, limit) == 0) {
            conversation_.idle(kLook);
            if (conversation_.isStopped()) return false;
        }
        char bytes[4096];
        const ssize_t got = ::read(STDIN_FILENO, bytes, sizeof bytes);
        if (got > 0) buffer_.append(bytes, static_cast<std::size_t>(got));
        return got > 0;
    }

    bool takeRest(std::string& line) {
        line = std::exchange(buffer_, {});
        return !line.empty();
    }

    Conversation& conversation_;
    std::string buffer_;
};

void playInput(Conversation& conversation, bool isKeptGoing) {
    conversation.connect();
    InputLines lines(conversation);
    std::string line;
    for (int number = 1; !conversation.isStopped() && lines.next(line); ++number)
        play(conversation, number, isKeptGoing, [&line] { return parseLine(line); });
}

struct Line {
    int number;
    Command command;
};

std::vector<Line> parseScript(const std::string& path) {
    const std::string text = readText(path);
    std::vector<Line> lines;
    std::size_t begin = 0;
    for (int number = 1; begin < text.size(); ++number) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string line = text.substr(begin, end - begin);
        begin = end + 1;
        try {
            lines.push_back({number, parseLine(line)});
        } catch (const ClientError& error) {
            throw ClientError(error.getFailure(), escaped(path) + ", " + atLine(number, error).what());
        }
    }
    return lines;
}

}  // namespace

std::function<void(Conversation&)> prepareRun(const std::string& path, bool isKeptGoing) {
    if (path == "-")
        return [isKeptGoing](Conversation& conversation) { playInput(conversation, isKeptGoing); };
    return [lines = parseScript(path), isKeptGoing](Conversation& conversation) {
        for (const Line& line : lines) {
            if (conversation.isStopped()) break;
            play(conversation, line.number, isKeptGoing, [&line] { return line.command; });
        }
    };
}

}  // namespace tvk::client
