// The program from its words to its exit status.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "client/ClientClock.h"
#include "client/Link.h"

namespace tvk::client {

struct Environment {
    std::ostream& out;
    std::ostream& errors;
    bool isTerminal = false;  // errors can be written over
    std::function<std::unique_ptr<Link>(const std::string& path)> openLink;
    // path: empty for the machine's clock.
    std::function<std::unique_ptr<ClientClock>(const std::string& path)> openClock;
    const std::atomic<bool>& stop;
    // Called before something that lasts until stop: from then on a signal means that.
    std::function<void()> catchSignals;
};

// args: without the program's name. Returns the exit status: 0 done, 1 refused by the amplifier, 2 bad use,
// 3 no link or no answer in time.
int runTool(const std::vector<std::string>& args, const Environment& environment);

}  // namespace tvk::client
