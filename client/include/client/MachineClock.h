// The machine's time (utility/Clock.h).
#pragma once

#include "client/ClientClock.h"

namespace tvk::client {

class MachineClock final : public ClientClock {
public:
    std::chrono::nanoseconds now() override;
    bool runsByItself() const override { return true; }
    bool receive(Link& link, Report& report, std::chrono::milliseconds limit) override;
};

}  // namespace tvk::client
