// A log sink that keeps every line, for tests: construct it before threads start, destroy it after they end.
#pragma once

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "utility/Log.h"

class LogRecorder : public tvk::log::Sink {
public:
    LogRecorder() : before_(takeOver()), debugBefore_(tvk::log::isDebugEnabled()) {
        tvk::log::enableDebug(true);
    }
    ~LogRecorder() override {
        tvk::log::enableDebug(debugBefore_);
        tvk::log::setSink(before_);
    }
    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;

    void debugLine(const char* tag, const char* text) override { add(std::string(tag) + ": " + text); }
    void diagnosticLine(tvk::log::Severity severity, const char*, int, const char* text) override {
        add(std::string(tvk::log::severityName(severity)) + " " + text);
    }

    // "tag: text" for debug lines, "Warn text" and "Error text" for diagnostics, in order.
    std::vector<std::string> lines() const {
        const std::lock_guard lock(mutex_);
        return lines_;
    }
    bool has(const std::string& line) const { return count(line) > 0; }
    long count(const std::string& line) const {
        const std::lock_guard lock(mutex_);
        return std::count(lines_.begin(), lines_.end(), line);
    }
    // Lines that begin with the text, in order.
    std::vector<std::string> startingWith(const std::string& text) const {
        const std::lock_guard lock(mutex_);
        std::vector<std::string> found;
        for (const std::string& line : lines_)
            if (line.rfind(text, 0) == 0) found.push_back(line);
        return found;
    }
    // Warnings and errors, but for those of a machine or a build that gives threads no priority or processor.
    std::vector<std::string> complaints() const {
        const std::lock_guard lock(mutex_);
        std::vector<std::string> found;
        for (const std::string& line : lines_)
            if ((line.starts_with("Warn ") || line.starts_with("Error ")) && !isOfScheduling(line))
                found.push_back(line);
        return found;
    }
    void clear() {
        const std::lock_guard lock(mutex_);
        lines_.clear();
    }

private:
    static bool isOfScheduling(const std::string& line) {
        return line.starts_with("Warn pthread_set") || line.starts_with("Warn The caller does not have") ||
               line.starts_with("Warn The affinity bit mask");
    }
    // What audio threads of earlier tests have left goes to the sink before this one.
    tvk::log::Sink* takeOver() {
        tvk::log::drainRealtimeRing();
        return tvk::log::setSink(this);
    }
    void add(const std::string& line) {
        const std::lock_guard lock(mutex_);
        lines_.push_back(line);
    }

    tvk::log::Sink* before_;
    bool debugBefore_;
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};
