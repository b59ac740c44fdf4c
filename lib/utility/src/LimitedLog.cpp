#include "utility/LimitedLog.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "utility/Clock.h"

namespace tvk {

namespace {

// A line is one line of text; what comes behind this length says nothing new.
constexpr std::size_t kLongestText = 1024;

// Before every time that a clock gives.
constexpr std::chrono::nanoseconds kLongAgo = std::chrono::nanoseconds::min() / 2;

void write(log::Severity severity, const char* file, int line, const std::string& text,
           unsigned long withheld) {
    if (withheld == 0)
        log::diagnostic(severity, file, line, "%s", text.c_str());
    else
        log::diagnostic(severity, file, line, "%s (and %lu more)", text.c_str(), withheld);
}

}  // namespace

LimitedLog::~LimitedLog() {
    for (const Place& place : places_)
        if (place.withheld > 0)
            write(place.severity, place.file, place.line, place.lastText, place.withheld - 1);
}

void LimitedLog::diagnostic(log::Severity severity, const char* file, int line, const char* format, ...) {
    std::array<char, kLongestText> text;
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text.data(), text.size(), format, arguments);
    va_end(arguments);
    unsigned long withheld = 0;
    if (admit(severity, file, line, text.data(), withheld))
        write(severity, file, line, text.data(), withheld);
}

bool LimitedLog::admit(log::Severity severity, const char* file, int line, const std::string& text,
                       unsigned long& count) {
    const std::chrono::nanoseconds now = Clock::current().now();
    const std::lock_guard lock(mutex_);
    Place& place = placeOf(severity, file, line);
    std::chrono::nanoseconds& oldest = place.times[static_cast<std::size_t>(place.next)];
    if (now - oldest < std::chrono::seconds(1)) {
        ++place.withheld;
        place.lastText = text;
        return false;
    }
    oldest = now;
    place.next = (place.next + 1) % kLinesASecond;
    count = place.withheld;
    place.withheld = 0;
    return true;
}

LimitedLog::Place& LimitedLog::placeOf(log::Severity severity, const char* file, int line) {
    const auto found = std::find_if(places_.begin(), places_.end(), [&](const Place& place) {
        return place.line == line && std::strcmp(place.file, file) == 0;
    });
    if (found != places_.end()) return *found;
    Place place{severity, file, line, {}, 0, 0, {}};
    place.times.fill(kLongAgo);
    return places_.emplace_back(std::move(place));
}

}  // namespace tvk
