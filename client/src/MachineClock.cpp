#include "client/MachineClock.h"

#include "client/Link.h"
#include "utility/Clock.h"

namespace tvk::client {

std::chrono::nanoseconds MachineClock::now() {
    return Clock::current().now();
}

bool MachineClock::receive(Link& link, Report& report, std::chrono::milliseconds limit) {
    return link.receive(report, limit);
}

}  // namespace tvk::client
