#include "proj/platform/StopSignal.h"

#include <ctime>
#include <pthread.h>

namespace tvk {

namespace {

volatile std::sig_atomic_t stopSeen = 0;

void noteStop(int) {
    stopSeen = 1;
}

sigset_t stopSet() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGUSR1);
    return set;
}

}  // namespace

StopSignal::StopSignal() {
    stopSeen = 0;
    const sigset_t blocked = stopSet();
    pthread_sigmask(SIG_BLOCK, &blocked, &maskBefore_);
    struct sigaction action {};
    action.sa_handler = noteStop;
    sigemptyset(&action.sa_mask);
    sigaction(SIGUSR1, &action, &actionBefore_);
}

void StopSignal::block() {
    const sigset_t blocked = stopSet();
    pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
}

StopSignal::~StopSignal() {
    const sigset_t set = stopSet();
    const timespec now{};
    sigtimedwait(&set, nullptr, &now);
    sigaction(SIGUSR1, &actionBefore_, nullptr);
    pthread_sigmask(SIG_SETMASK, &maskBefore_, nullptr);
}

void StopSignal::wait() {
    sigset_t open = maskBefore_;
    sigdelset(&open, SIGUSR1);
    while (!stopSeen)
        sigsuspend(&open);
}

bool StopSignal::arrived() const {
    sigset_t pending;
    sigpending(&pending);
    return stopSeen || sigismember(&pending, SIGUSR1) == 1;
}

}  // namespace tvk
