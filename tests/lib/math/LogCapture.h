// Collects log lines for the life of a test.
#pragma once

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "utility/Log.h"

class LogCapture : public tvk::log::Sink {
public:
    LogCapture() : before_(tvk::log::setSink(this)) {}
    ~LogCapture() override {
        tvk::log::setSink(before_);
        tvk::log::enableDebug(false);
    }

    void debugLine(const char* tag, const char* text) override {
        const std::lock_guard lock(mutex_);
        lines_.push_back(std::string(tag) + ": " + text);
    }
    void diagnosticLine(tvk::log::Severity severity, const char*, int, const char* text) override {
        const std::lock_guard lock(mutex_);
        lines_.push_back(std::string(tvk::log::severityName(severity)) + " " + text);
    }

    const std::vector<std::string>& lines() const { return lines_; }
    long count(const std::string& line) const { return std::count(lines_.begin(), lines_.end(), line); }

private:
    std::mutex mutex_;
    std::vector<std::string> lines_;
    tvk::log::Sink* before_;
};
