#include "desk/Script.h"

#include <algorithm>
#include <charconv>

#include "desk/Refusal.h"
#include "panel/Pins.h"
#include "panel/Script.h"

namespace tvk::desk {

namespace {

HidReport readReport(const std::string& where, const std::string& hex) {
    HidReport report{};
    if (hex.empty() || hex.size() % 2 != 0 || hex.size() > 2 * report.size())
        throw Refusal(where + ": a report is 1 to 64 bytes, two hexadecimal digits each");
    for (std::size_t n = 0; n < hex.size() / 2; ++n) {
        const char* const digits = hex.data() + 2 * n;
        const auto [end, fault] = std::from_chars(digits, digits + 2, report[n], 16);
        if (fault != std::errc() || end != digits + 2)
            throw Refusal(where + ": '" + hex.substr(2 * n, 2) + "' is not a byte in hexadecimal digits");
    }
    return report;
}

ScriptEvent readEvent(const panel::ScriptLine& line) {
    using Kind = ScriptEvent::Kind;
    const std::string& where = line.where;
    const std::vector<std::string>& words = line.words;
    ScriptEvent event;
    event.at = line.at;
    if (words.empty()) throw Refusal(where + ": say what happens at that time");
    const std::string& subject = words[0];
    const bool isCable = subject == "plug" || subject == "unplug";
    if (words.size() != (isCable ? 1 : 2))
        throw Refusal(where + ": " + subject + (isCable ? " takes no value" : " takes one value"));
    if (isCable) {
        event.kind = subject == "plug" ? Kind::Plug : Kind::Unplug;
    } else if (subject == "hid") {
        event.kind = Kind::Report;
        event.report = readReport(where, words[1]);
    } else if (subject == "button") {
        event.kind = Kind::Button;
        if (words[1] != "0" && words[1] != "1") throw Refusal(where + ": a button is 1 (down) or 0 (up)");
        event.isDown = words[1] == "1";
    } else {
        event.frame = panel::readPin(where, subject, words[1]);
    }
    return event;
}

}  // namespace

Script Script::load(const std::string& file) {
    Script script;
    for (const panel::ScriptLine& line : panel::loadScriptLines(file))
        script.add(readEvent(line));
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
