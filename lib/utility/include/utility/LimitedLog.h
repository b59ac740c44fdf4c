// Diagnostics that the far end of a link can cause as often as it likes.
//
// Each line of code that reports through the same LimitedLog is written at most ten times in any second of
// Clock::current(). What is withheld meanwhile is counted, and the next line that is written from there ends
// with the count; the last count is written when the LimitedLog goes.
//
// Any thread but the audio thread.
#pragma once

#include <array>
#include <chrono>
#include <mutex>
#include <string>
#include <vector>

#include "utility/Log.h"

namespace tvk {

class LimitedLog {
public:
    LimitedLog() = default;
    ~LimitedLog();
    LimitedLog(const LimitedLog&) = delete;
    LimitedLog& operator=(const LimitedLog&) = delete;

    // file is kept: a literal. It and the line are the place.
    void diagnostic(log::Severity severity, const char* file, int line, const char* format, ...)
        __attribute__((format(printf, 5, 6)));

private:
    static constexpr int kLinesASecond = 10;

    // One line of code. The times are those of its last lines, the oldest at next.
    struct Place {
        log::Severity severity;
        const char* file;
        int line;
        std::array<std::chrono::nanoseconds, kLinesASecond> times;
        int next;
        unsigned long withheld;
        std::string lastText;
    };

    // True when the line is to be written: count is then what was withheld before it.
    bool admit(log::Severity severity, const char* file, int line, const std::string& text,
               unsigned long& count);
    Place& placeOf(log::Severity severity, const char* file, int line);

    std::mutex mutex_;
    std::vector<Place> places_;
};

}  // namespace tvk

#define TVK_WARN_LIMITED(limitedLog, ...) \
    (limitedLog).diagnostic(::tvk::log::Severity::Warn, __FILE__, __LINE__, __VA_ARGS__)
#define TVK_ERROR_LIMITED(limitedLog, ...) \
    (limitedLog).diagnostic(::tvk::log::Severity::Error, __FILE__, __LINE__, __VA_ARGS__)
