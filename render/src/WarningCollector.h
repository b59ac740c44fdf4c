// Takes the place of the console as the log's sink: diagnostics are kept for the report and echoed to a
// stream, debug lines go to the stream.
#pragma once

#include <mutex>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "utility/Log.h"

namespace tvk::render {

class WarningCollector : public log::Sink {
public:
    explicit WarningCollector(std::ostream& echo) : echo_(echo), before_(log::setSink(this)) {}
    ~WarningCollector() override { log::setSink(before_); }

    std::vector<std::string> warnings() const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return warnings_;
    }

    void debugLine(const char* tag, const char* text) override {
        const std::lock_guard<std::mutex> lock(mutex_);
        echo_ << tag << ": " << text << '\n';
    }
    void diagnosticLine(log::Severity severity, const char*, int, const char* text) override {
        std::string line = text;
        while (!line.empty() && line.back() == '\n')
            line.pop_back();
        const std::lock_guard<std::mutex> lock(mutex_);
        echo_ << log::severityName(severity) << ' ' << line << '\n';
        warnings_.push_back(std::move(line));
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> warnings_;
    std::ostream& echo_;
    log::Sink* const before_;
};

}  // namespace tvk::render
