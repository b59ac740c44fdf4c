// The command-line desktop client.
#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>
#include <unistd.h>

#include "client/DeskClock.h"
#include "client/MachineClock.h"
#include "client/OpenLink.h"
#include "client/tool/Tool.h"
#include "utility/Log.h"

namespace {

using namespace tvk::client;

constexpr int kFailed = 3;

std::atomic<bool> stop{false};
static_assert(std::atomic<bool>::is_always_lock_free);

void stopAtSignal(int) {
    // A second signal ends a program that does not come to look.
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    stop.store(true);
}

void catchSignals() {
    struct sigaction action {};
    action.sa_handler = stopAtSignal;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

// What the program has to say it says itself; the lines of what it is built of would say it twice.
class NoLog final : public tvk::log::Sink {
public:
    void debugLine(const char*, const char*) override {}
    void diagnosticLine(tvk::log::Severity, const char*, int, const char*) override {}
};

std::unique_ptr<ClientClock> openClock(const std::string& path) {
    if (path.empty()) return std::make_unique<MachineClock>();
    return std::make_unique<DeskClock>(path);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        NoLog noLog;
        tvk::log::setSink(&noLog);
        const Environment environment{std::cout, std::cerr,   isatty(STDERR_FILENO) == 1, openLink, openClock,
                                      stop,      catchSignals};
        const int status = runTool({argv + 1, argv + argc}, environment);
        tvk::log::setSink(nullptr);
        return status;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tarvek-client: %s\n", error.what());
        return kFailed;
    }
}
