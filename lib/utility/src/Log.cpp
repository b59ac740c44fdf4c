#include "utility/Log.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <string>

#include "utility/Exception.h"
#include "utility/RealtimeThread.h"

namespace tvk {

namespace {

std::string formatList(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (length < 0) return format;
    std::string text(static_cast<size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

}  // namespace

std::string formatText(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::string text = formatList(format, arguments);
    va_end(arguments);
    return text;
}

namespace log {

namespace {

class Console : public Sink {
public:
    void debugLine(const char* tag, const char* text) override {
        std::fprintf(stdout, "%s: %s\n", tag, text);
        std::fflush(stdout);
    }
    void diagnosticLine(Severity severity, const char* file, int line, const char* text) override {
        std::fprintf(stderr, "%s %s:%d: %s\n", severityName(severity), file, line, text);
    }
};

Console console;
std::atomic<Sink*> currentSink{&console};
std::atomic<bool> debugEnabled{false};

// A line as the real-time thread leaves it. Tag and file are literals of the caller.
struct RingLine {
    bool isDiagnostic;
    Severity severity;
    const char* tagOrFile;
    int line;
    char text[240];
};

// Single producer (the real-time thread), single consumer (the writer). Indices only ever grow.
constexpr unsigned kRingLines = 128;
std::array<RingLine, kRingLines> ring;
std::atomic<unsigned> ringHead{0};
std::atomic<unsigned> ringTail{0};
std::atomic<unsigned long> dropped{0};

void pushLine(bool isDiagnostic, Severity severity, const char* tagOrFile, int line, const char* format,
              va_list arguments) {
    const unsigned head = ringHead.load(std::memory_order_relaxed);
    if (head - ringTail.load(std::memory_order_acquire) == kRingLines) {
        dropped.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    RingLine& slot = ring[head % kRingLines];
    slot.isDiagnostic = isDiagnostic;
    slot.severity = severity;
    slot.tagOrFile = tagOrFile;
    slot.line = line;
    std::vsnprintf(slot.text, sizeof slot.text, format, arguments);
    ringHead.store(head + 1, std::memory_order_release);
}

}  // namespace

const char* severityName(Severity severity) {
    return severity == Severity::Warn ? "Warn" : "Error";
}

Sink* setSink(Sink* sink) {
    Sink* const before = currentSink.exchange(sink ? sink : &console);
    return before == &console ? nullptr : before;
}

void enableDebug(bool enabled) {
    debugEnabled.store(enabled, std::memory_order_relaxed);
}

bool isDebugEnabled() {
    return debugEnabled.load(std::memory_order_relaxed);
}

void debug(const char* tag, const char* format, ...) {
    if (!isDebugEnabled()) return;
    va_list arguments;
    va_start(arguments, format);
    if (RealtimeThreadScope::isMarked())
        pushLine(false, Severity::Warn, tag, 0, format, arguments);
    else
        currentSink.load()->debugLine(tag, formatList(format, arguments).c_str());
    va_end(arguments);
}

void diagnostic(Severity severity, const char* file, int line, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    if (RealtimeThreadScope::isMarked())
        pushLine(true, severity, file, line, format, arguments);
    else
        currentSink.load()->diagnosticLine(severity, file, line, formatList(format, arguments).c_str());
    va_end(arguments);
}

int drainRealtimeRing() {
    const unsigned head = ringHead.load(std::memory_order_acquire);
    unsigned tail = ringTail.load(std::memory_order_relaxed);
    int written = 0;
    for (; tail != head; ++tail, ++written) {
        const RingLine& slot = ring[tail % kRingLines];
        Sink* const sink = currentSink.load();
        if (slot.isDiagnostic)
            sink->diagnosticLine(slot.severity, slot.tagOrFile, slot.line, slot.text);
        else
            sink->debugLine(slot.tagOrFile, slot.text);
        ringTail.store(tail + 1, std::memory_order_release);
    }
    return written;
}

unsigned long droppedRealtimeLines() {
    return dropped.load(std::memory_order_relaxed);
}

}  // namespace log
}  // namespace tvk
