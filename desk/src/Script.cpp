#include "desk/Script.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <sstream>

#include "desk/Refusal.h"

namespace tvk::desk {

namespace {

constexpr double kMostSeconds = 366.0 * 24.0 * 3600.0;

HidReport readReport(const std::string& what, const std::string& hex) {
    HidReport report{};
    if (hex.empty() || hex.size() % 2 != 0 || hex.size() > 2 * report.size())
        throw Refusal(what + ": a report is 1 to 64 bytes, two hexadecimal digits each");
    for (std::size_t n = 0; n < hex.size() / 2; ++n) {
        const char* const digits = hex.data() + 2 * n;
        const auto [end, fault] = std::from_chars(digits, digits + 2, report[n], 16);
        if (fault != std::errc() || end != digits + 2)
            throw Refusal(what + ": '" + hex.substr(2 * n, 2) + "' is not a byte in hexadecimal digits");
    }
    return report;
}

ScriptEvent readEvent(const std::string& what, const std::vector<std::string>& words) {
    using Kind = ScriptEvent::Kind;
    ScriptEvent event;
    event.at = readSeconds(what, words[0]);
    if (words.size() < 2) throw Refusal(what + ": say what happens at that time");
    const std::string& subject = words[1];
    const bool isCable = subject == "plug" || subject == "unplug";
    if (words.size() != (isCable ? 2 : 3))
        throw Refusal(what + ": " + subject + (isCable ? " takes no value" : " takes one value"));
    if (isCable) {
        event.kind = subject == "plug" ? Kind::Plug : Kind::Unplug;
    } else if (subject == "hid") {
        event.kind = Kind::Report;
        event.report = readReport(what, words[2]);
    } else if (subject == "button") {
        event.kind = Kind::Button;
        if (words[2] != "0" && words[2] != "1") throw Refusal(what + ": a button is 1 (down) or 0 (up)");
        event.value = words[2] == "1" ? 1.0f : 0.0f;
    } else {
        event.pin = subject;
        event.value = readPinValue(what, subject, words[2]);
    }
    return event;
}

}  // namespace

std::chrono::nanoseconds readSeconds(const std::string& what, const std::string& text) {
    double seconds = 0.0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (fault != std::errc() || end != text.data() + text.size() || !std::isfinite(seconds) ||
        seconds < 0.0 || seconds > kMostSeconds)
        throw Refusal(what + ": '" + text + "' is not a time in seconds, from 0 to a year");
    return std::chrono::nanoseconds(std::llround(seconds * 1e9));
}

Script Script::load(const std::filesystem::path& file) {
    std::ifstream stream(file);
    if (!stream || std::filesystem::is_directory(file))
        throw Refusal("--script " + file.string() + ": cannot be read");
    Script script;
    std::string line;
    for (int number = 1; std::getline(stream, line); ++number) {
        std::istringstream text(line.substr(0, line.find('#')));
        std::vector<std::string> words;
        for (std::string word; text >> word;)
            words.push_back(word);
        const std::string what = "--script " + file.string() + ":" + std::to_string(number);
        if (!words.empty()) script.add(readEvent(what, words));
    }
    return script;
}

void Script::add(const ScriptEvent& event) {
    const auto later =
        std::upper_bound(events_.begin(), events_.end(), event,
                         [](const ScriptEvent& one, const ScriptEvent& other) { return one.at < other.at; });
    events_.insert(later, event);
}

bool Script::hasReports() const {
    return std::any_of(events_.begin(), events_.end(),
                       [](const ScriptEvent& event) { return event.kind == ScriptEvent::Kind::Report; });
}

const ScriptEvent* Script::take(std::chrono::nanoseconds now) {
    if (next_ == events_.size() || events_[next_].at > now) return nullptr;
    return &events_[next_++];
}

}  // namespace tvk::desk
