#include <csignal>
#include <cstdio>
#include <exception>
#include <unistd.h>

#include "proj/runner/Runner.h"
#include "utility/Exception.h"
#include "utility/Log.h"
#include "utility/ThreadSched.h"

namespace tvk {

const char* const kVersion = "2.0.18-0-gdaefaf3";

namespace {

// Enough for the deepest preset; all of it stays in memory once memory is locked. A sanitizer keeps data of
// its own on each stack.
#ifdef TARVEK_SANITIZED
constexpr std::size_t kThreadStackBytes = 8 * 1024 * 1024;
#else
constexpr std::size_t kThreadStackBytes = 256 * 1024;
#endif

// At once and without destructors. exit would run handlers, which a signal may have interrupted.
void endAtOnce(int) {
    _exit(0);
}

}  // namespace

int applicationMain(const Platform& platform) {
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    std::printf("version: %s\n", kVersion);
    ThreadSched::setDefaultStackSize(kThreadStackBytes);
    StopSignal stop;
    struct sigaction action {};
    action.sa_handler = endAtOnce;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    try {
        runApplication(platform, stop);
    } catch (const Exception& e) {
        log::diagnostic(log::Severity::Error, e.file(), e.line(), "%s", e.what());
        return 1;
    } catch (const std::exception& e) {
        TVK_ERROR("%s", e.what());
        return 1;
    }
    return 0;
}

}  // namespace tvk
