// The thread that writes the lines a real-time thread left in the log's ring.
#pragma once

#include <atomic>
#include <thread>

namespace tvk {

// Runs from construction to destruction, looking every 10 ms of the clock in force. The destructor writes
// what is left. One object a process.
class RealtimeLogWriter {
public:
    RealtimeLogWriter();
    ~RealtimeLogWriter();
    RealtimeLogWriter(const RealtimeLogWriter&) = delete;
    RealtimeLogWriter& operator=(const RealtimeLogWriter&) = delete;

private:
    std::atomic<bool> running_{true};
    std::thread thread_;
};

}  // namespace tvk
