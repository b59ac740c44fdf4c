// A client's clock whose time is another's: each wait lets that pass, a millisecond at a time, until
// something has come.
#pragma once

#include <chrono>
#include <functional>
#include <utility>

#include "client/ClientClock.h"

class SteppedClientClock final : public tvk::client::ClientClock {
public:
    // now: the other's time. step: lets that much of it pass; what it throws ends the wait.
    SteppedClientClock(std::function<std::chrono::nanoseconds()> now,
                       std::function<void(std::chrono::milliseconds)> step)
        : now_(std::move(now)), step_(std::move(step)) {}

    std::chrono::nanoseconds now() override { return now_(); }
    bool runsByItself() const override { return false; }
    bool receive(tvk::client::Link& link, tvk::client::Report& report,
                 std::chrono::milliseconds limit) override {
        constexpr std::chrono::milliseconds kStep{1};
        for (std::chrono::milliseconds waited{0}; !link.receive(report, {}); waited += kStep) {
            if (waited >= limit) return false;
            step_(kStep);
        }
        return true;
    }

private:
    std::function<std::chrono::nanoseconds()> now_;
    std::function<void(std::chrono::milliseconds)> step_;
};
