// Between the guard and whatever it watches with.
#pragma once

namespace realtimewatch {

enum Kind { kAllocation, kFree, kLock, kSystemCall, kKinds };

// Counts one event if a guard lives and this thread is real-time. Allocates nothing.
void report(Kind kind);

// Makes the watching work; called before a guard is armed.
void install();

}  // namespace realtimewatch
