// The two entry points of all logging.
//
//   log::debug(tag, format, ...)   a line of the running commentary: "tag: text" on standard output.
//                                  Written only while the process-wide switch is on.
//   TVK_WARN(format, ...)          a diagnostic: "Warn file:line: text" on standard error, always written.
//   TVK_ERROR(format, ...)         the same with "Error".
//
// Any thread may call them. On a thread marked as real-time (RealtimeThread.h) the line is formatted into a
// fixed-size slot of a lock-free ring, without allocation, lock or system call, and RealtimeLogWriter writes
// it later; a line that finds the ring full is dropped and counted.
#pragma once

#include <cstdarg>

namespace tvk::log {

enum class Severity { Warn, Error };

// Where lines go. The default sink is the console; tools and tests put their own in its place.
class Sink {
public:
    virtual ~Sink() = default;
    // May be called from several threads at once.
    virtual void debugLine(const char* tag, const char* text) = 0;
    virtual void diagnosticLine(Severity severity, const char* file, int line, const char* text) = 0;
};

// Replaces the sink and returns the one before; null stands for the console. Set it before threads start.
Sink* setSink(Sink* sink);

// The process-wide switch for debug lines; off until the application runner turns it on.
void enableDebug(bool enabled);
bool isDebugEnabled();

void debug(const char* tag, const char* format, ...) __attribute__((format(printf, 2, 3)));
void diagnostic(Severity severity, const char* file, int line, const char* format, ...)
    __attribute__((format(printf, 4, 5)));

// Writes what lies in the ring of the real-time threads to the sink. One thread at a time, never a real-time
// one. Returns the number of lines written.
int drainRealtimeRing();

// Lines lost since the start because the ring was full.
unsigned long droppedRealtimeLines();

const char* severityName(Severity severity);

}  // namespace tvk::log

#define TVK_WARN(...) ::tvk::log::diagnostic(::tvk::log::Severity::Warn, __FILE__, __LINE__, __VA_ARGS__)
#define TVK_ERROR(...) ::tvk::log::diagnostic(::tvk::log::Severity::Error, __FILE__, __LINE__, __VA_ARGS__)
