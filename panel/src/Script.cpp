#include "panel/Script.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "panel/Failures.h"
#include "panel/Pins.h"
#include "utility/EscapedText.h"

namespace tvk::panel {

namespace {

constexpr double kMostSeconds = std::chrono::duration<double>(kLongestTime).count();

bool isOfTheDesk(const std::string& word) {
    constexpr std::array kWords = {"button", "hid", "plug", "unplug"};
    return std::any_of(kWords.begin(), kWords.end(), [&](const char* known) { return word == known; });
}

std::vector<std::string> wordsOf(const std::string& line) {
    std::istringstream text(line.substr(0, line.find('#')));
    std::vector<std::string> words;
    for (std::string word; text >> word;)
        words.push_back(escaped(word));
    return words;
}

}  // namespace

std::chrono::nanoseconds readSeconds(const std::string& where, const std::string& text) {
    double seconds = 0.0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    const bool isNumber = fault == std::errc() && end == text.data() + text.size();
    // A not-a-number lies in no range.
    if (!isNumber || !(seconds >= 0.0 && seconds <= kMostSeconds))
        throw Refusal(where + ": '" + text + "' is no time in seconds, from 0 to a year, such as 1.5");
    return std::chrono::nanoseconds(std::llround(seconds * 1e9));
}

std::vector<ScriptLine> readScriptLines(std::istream& text, const std::string& name) {
    std::vector<ScriptLine> lines;
    std::string line;
    for (int number = 1; std::getline(text, line); ++number) {
        std::vector<std::string> words = wordsOf(line);
        if (words.empty()) continue;
        const std::string where = name + ":" + std::to_string(number);
        const std::chrono::nanoseconds at = readSeconds(where, words.front());
        words.erase(words.begin());
        lines.push_back({where, at, std::move(words)});
    }
    if (text.bad()) throw Refusal(name + ": cannot be read");
    return lines;
}

std::vector<ScriptLine> loadScriptLines(const std::string& file) {
    std::ifstream text(file);
    if (!text || std::filesystem::is_directory(file))
        throw Refusal(file + ": cannot be read; give a file with lines SECONDS PIN VALUE");
    return readScriptLines(text, file);
}

Script Script::of(const std::vector<ScriptLine>& lines) {
    Script script;
    for (const auto& [where, at, words] : lines) {
        if (!words.empty() && isOfTheDesk(words[0])) {
            script.passedOver.push_back(where + ": " + words[0] +
                                        " is no control of the panel; tarvek-desk plays it");
            continue;
        }
        if (words.size() != 2) throw Refusal(where + ": a line is SECONDS PIN VALUE, such as 1.5 PA_4 0.5");
        script.moves.push_back({at, readPin(where, words[0], words[1])});
    }
    std::stable_sort(script.moves.begin(), script.moves.end(),
                     [](const Move& one, const Move& other) { return one.at < other.at; });
    return script;
}

}  // namespace tvk::panel
