#include "panel/Conversation.h"

#include <algorithm>

#include "utility/Clock.h"
#include "utility/Exception.h"

namespace tvk::panel {

namespace {

// A clock that makes its own time may not notice bytes before a wait ends.
constexpr std::chrono::milliseconds kLongestWait{10};

}  // namespace

Conversation::Conversation(SerialLine& line) : line_(line), start_(Clock::current().now()) {}

std::chrono::nanoseconds Conversation::elapsed() const {
    return Clock::current().now() - start_;
}

void Conversation::send(const Frame& frame) {
    const std::optional<std::string> bytes = encode(frame);
    if (!bytes) TVK_THROW("%s does not fit into a frame", frame.name.c_str());
    line_.write(*bytes);
}

bool Conversation::listen(std::chrono::nanoseconds until,
                          const std::function<bool(const Received&)>& listener) {
    while (true) {
        while (!unheard_.empty()) {
            const Received received = unheard_.front();
            unheard_.erase(unheard_.begin());
            if (!listener(received)) return true;
        }
        const std::chrono::nanoseconds left = until - elapsed();
        if (left <= std::chrono::nanoseconds(0)) return true;
        const auto wait = std::min(std::chrono::duration_cast<std::chrono::milliseconds>(left), kLongestWait);
        unheard_ = scanner_.take(line_.read(wait));
        if (line_.isStopped()) return false;
        if (unheard_.empty() && wait.count() == 0) Clock::current().sleepFor(left);
    }
}

}  // namespace tvk::panel
