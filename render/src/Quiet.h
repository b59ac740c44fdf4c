// Swallows log lines while it lives.
#pragma once

#include "utility/Log.h"

namespace tvk::render {

class Quiet : public log::Sink {
public:
    Quiet() : before_(log::setSink(this)) {}
    ~Quiet() override { log::setSink(before_); }
    void debugLine(const char*, const char*) override {}
    void diagnosticLine(log::Severity, const char*, int, const char*) override {}

private:
    log::Sink* const before_;
};

}  // namespace tvk::render
