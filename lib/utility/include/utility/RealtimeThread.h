// Marks the calling thread as real-time for the life of the object and flushes its denormals to zero.
//
// The mark is what Log reads to send lines through its ring, and what test guards read to find an
// allocation, a lock or a system call on the wrong thread. Denormals are flushed (FTZ and DAZ on x86-64, FZ
// on Arm) because a decaying filter tail in denormal range costs tens of times a normal sample.
#pragma once

namespace tvk {

class RealtimeThreadScope {
public:
    RealtimeThreadScope();
    ~RealtimeThreadScope();
    RealtimeThreadScope(const RealtimeThreadScope&) = delete;
    RealtimeThreadScope& operator=(const RealtimeThreadScope&) = delete;

    // True on a thread inside such a scope.
    static bool isMarked();

private:
    bool markedBefore_;
    unsigned long floatControlBefore_;
};

}  // namespace tvk
