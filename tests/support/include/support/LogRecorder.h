// Keeps what is logged while it lives, in place of the console.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "utility/Log.h"

class LogRecorder : public tvk::log::Sink {
public:
    // recordDebug turns the process-wide switch for debug lines on for the recorder's life.
    explicit LogRecorder(bool recordDebug = false);
    ~LogRecorder() override;

    // "Warn text" and "Error text".
    std::vector<std::string> diagnostics() const;
    // "tag: text".
    std::vector<std::string> debugLines() const;
    bool hasDiagnostic(const std::string& line) const;
    bool hasDebugLine(const std::string& line) const;
    void clear();

    void debugLine(const char* tag, const char* text) override;
    void diagnosticLine(tvk::log::Severity severity, const char* file, int line, const char* text) override;

private:
    mutable std::mutex mutex_;
    std::vector<std::string> diagnostics_;
    std::vector<std::string> debugLines_;
    tvk::log::Sink* before_;
    bool debugBefore_;
};
