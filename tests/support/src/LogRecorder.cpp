#include "support/LogRecorder.h"

#include <algorithm>

LogRecorder::LogRecorder(bool recordDebug)
    : before_(tvk::log::setSink(this)), debugBefore_(tvk::log::isDebugEnabled()) {
    if (recordDebug) tvk::log::enableDebug(true);
}

LogRecorder::~LogRecorder() {
    tvk::log::enableDebug(debugBefore_);
    tvk::log::setSink(before_);
}

std::vector<std::string> LogRecorder::diagnostics() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return diagnostics_;
}

std::vector<std::string> LogRecorder::debugLines() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return debugLines_;
}

bool LogRecorder::hasDiagnostic(const std::string& line) const {
    const auto lines = diagnostics();
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

bool LogRecorder::hasDebugLine(const std::string& line) const {
    const auto lines = debugLines();
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

void LogRecorder::clear() {
    const std::lock_guard<std::mutex> lock(mutex_);
    diagnostics_.clear();
    debugLines_.clear();
}

void LogRecorder::debugLine(const char* tag, const char* text) {
    const std::lock_guard<std::mutex> lock(mutex_);
    debugLines_.push_back(std::string(tag) + ": " + text);
}

void LogRecorder::diagnosticLine(tvk::log::Severity severity, const char*, int, const char* text) {
    const std::lock_guard<std::mutex> lock(mutex_);
    diagnostics_.push_back(std::string(tvk::log::severityName(severity)) + " " + text);
}
