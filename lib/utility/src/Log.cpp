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

// A line as a real-time thread leaves it. Tag and file are literals of the caller.
struct RingLine {
    // Whose turn it is with this slot: that of the producer at this index, or, one further on, of the reader.
    std::atomic<unsigned> turn{0};
    bool isDiagnostic = false;
    Severity severity = Severity::Warn;
    const char* tagOrFile = nullptr;
    int line = 0;
    char text[240] = {};
};

constexpr unsigned kRingLines = 128;

// Several producers (the real-time threads), one consumer (the writer), each slot handed on by its turn
// (Vyukov: Bounded MPMC queue, 2010). Indices only ever grow.
struct Ring {
    Ring() {
        for (unsigned i = 0; i < kRingLines; ++i)
            lines[i].turn.store(i, std::memory_order_relaxed);
    }
    std::array<RingLine, kRingLines> lines;
    std::atomic<unsigned> head{0};
    unsigned tail = 0;
};

Ring ring;
std::atomic<unsigned long> dropped{0};

// More tries than there are real-time threads: who loses that often is not worth a longer wait.
constexpr int kClaimTries = 16;

// The slot at the ring's head, now the caller's, and its index; null when the ring is full.
RingLine* claimSlot(unsigned& index) {
    index = ring.head.load(std::memory_order_relaxed);
    for (int i = 0; i < kClaimTries; ++i) {
        RingLine& slot = ring.lines[index % kRingLines];
        const int behind = static_cast<int>(slot.turn.load(std::memory_order_acquire) - index);
        if (behind < 0) return nullptr;
        if (behind > 0)
            index = ring.head.load(std::memory_order_relaxed);
        else if (ring.head.compare_exchange_weak(index, index + 1, std::memory_order_relaxed))
            return &slot;
    }
    return nullptr;
}

void pushLine(bool isDiagnostic, Severity severity, const char* tagOrFile, int line, const char* format,
              va_list arguments) {
    unsigned index = 0;
    RingLine* const slot = claimSlot(index);
    if (!slot) {
        dropped.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    slot->isDiagnostic = isDiagnostic;
    slot->severity = severity;
    slot->tagOrFile = tagOrFile;
    slot->line = line;
    std::vsnprintf(slot->text, sizeof slot->text, format, arguments);
    slot->turn.store(index + 1, std::memory_order_release);
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
    int written = 0;
    for (;; ++written) {
        RingLine& slot = ring.lines[ring.tail % kRingLines];
        if (slot.turn.load(std::memory_order_acquire) != ring.tail + 1) return written;
        Sink* const sink = currentSink.load();
        if (slot.isDiagnostic)
            sink->diagnosticLine(slot.severity, slot.tagOrFile, slot.line, slot.text);
        else
            sink->debugLine(slot.tagOrFile, slot.text);
        slot.turn.store(ring.tail + kRingLines, std::memory_order_release);
        ++ring.tail;
    }
}

unsigned long droppedRealtimeLines() {
    return dropped.load(std::memory_order_relaxed);
}

}  // namespace log
}  // namespace tvk
