// A serial line with frames instead of bytes, in the time since it began.
//
// One thread. Throws LinkTrouble when the line fails.
#pragma once

#include <chrono>
#include <functional>
#include <vector>

#include "panel/FrameScanner.h"
#include "panel/SerialLine.h"

namespace tvk::panel {

class Conversation {
public:
    explicit Conversation(SerialLine& line);

    std::chrono::nanoseconds elapsed() const;

    void send(const Frame& frame);
    void sendBytes(std::string_view bytes) { line_.write(bytes); }

    // Hands on what comes until that time has elapsed, the listener returns false, or the line was told to
    // stop. False for the last.
    bool listen(std::chrono::nanoseconds until, const std::function<bool(const Received&)>& listener);

private:
    SerialLine& line_;
    FrameScanner scanner_;
    std::vector<Received> unheard_;
    const std::chrono::nanoseconds start_;
};

}  // namespace tvk::panel
