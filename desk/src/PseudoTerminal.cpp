#include "desk/PseudoTerminal.h"

#include <array>
#include <chrono>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include "desk/Refusal.h"
#include "utility/Clock.h"

namespace tvk::desk {

namespace {

// The kernel's thread has no real-time priority and may have to wait for those that have, which Linux leaves
// 0.95 of each second (sched_rt_runtime_us). A reader may take some of the bytes before they are looked at,
// so that they are never all seen waiting.
constexpr std::chrono::seconds kLongestHandOver{1};
constexpr std::chrono::microseconds kBetweenLooks{20};

// The line holds 4095 bytes for its reader and keeps the rest out of sight.
constexpr int kMostSeenWaiting = 4000;

}  // namespace

PseudoTerminal::PseudoTerminal(unsigned char leastRead) {
    termios raw{};
    cfmakeraw(&raw);
    raw.c_cc[VMIN] = leastRead;
    raw.c_cc[VTIME] = 0;
    std::array<char, 64> name{};
    if (openpty(&master_, &slave_, name.data(), &raw, nullptr) == -1)
        throw Refusal("no pseudo-terminal is left on this machine; end programs that use some");
    path_ = name.data();
    fcntl(master_, F_SETFL, O_NONBLOCK);
    fcntl(master_, F_SETFD, FD_CLOEXEC);
    fcntl(slave_, F_SETFD, FD_CLOEXEC);
    fchmod(slave_, S_IRUSR | S_IWUSR);
}

PseudoTerminal::~PseudoTerminal() {
    close(master_);
    close(slave_);
}

std::vector<std::uint8_t> PseudoTerminal::read(std::size_t most) {
    std::vector<std::uint8_t> bytes(most);
    std::size_t filled = 0;
    // A read gives what has been carried over by then; one that finds nothing waits until all is.
    ssize_t count = 0;
    while (filled < most && (count = ::read(master_, bytes.data() + filled, most - filled)) > 0)
        filled += static_cast<std::size_t>(count);
    bytes.resize(filled);
    return bytes;
}

void PseudoTerminal::write(std::span<const std::uint8_t> bytes) {
    if (bytes.empty()) return;
    const int before = waitingAtSlave();
    const ssize_t count = ::write(master_, bytes.data(), bytes.size());
    if (count <= 0 || before + count > kMostSeenWaiting) return;
    const auto end = std::chrono::steady_clock::now() + kLongestHandOver;
    int seen = 0;
    // Asking for input lets the kernel begin the transfer; nothing there after that has been read already.
    while (slaveHasInput()) {
        const int waiting = waitingAtSlave();
        const bool isBeingRead = waiting < seen;
        if (waiting >= before + count || isBeingRead || std::chrono::steady_clock::now() >= end) return;
        seen = waiting;
        Clock::current().nap(kBetweenLooks);
    }
}

bool PseudoTerminal::setFlow(bool isFlowing) {
    if (isFlowing == isFlowing_) return false;
    isFlowing_ = isFlowing;
    tcflow(slave_, isFlowing ? TCOON : TCOOFF);
    return true;
}

int PseudoTerminal::waitingAtSlave() const {
    int count = 0;
    return ioctl(slave_, FIONREAD, &count) == 0 ? count : 0;
}

bool PseudoTerminal::slaveHasInput() const {
    pollfd slave{slave_, POLLIN, 0};
    return poll(&slave, 1, 0) > 0;
}

}  // namespace tvk::desk
