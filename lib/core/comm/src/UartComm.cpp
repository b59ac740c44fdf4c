#include "core/comm/UartComm.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include "utility/Clock.h"
#include "utility/Log.h"

namespace {

constexpr int kMostTries = 100;
constexpr std::chrono::milliseconds kBetweenTries{1};
constexpr cc_t kReadTimeTenths = 2;
constexpr cc_t kFewestBytes = 1;

bool configure(int descriptor) {
    termios settings{};
    if (tcgetattr(descriptor, &settings) == -1) return false;
    settings.c_cflag = B115200 | CS8 | CLOCAL | CREAD;
    settings.c_iflag = IGNPAR;
    settings.c_oflag = 0;
    settings.c_lflag = 0;
    settings.c_cc[VTIME] = kReadTimeTenths;
    settings.c_cc[VMIN] = kFewestBytes;
    tcflush(descriptor, TCIFLUSH);
    return tcsetattr(descriptor, TCSANOW, &settings) == 0;
}

int openPort(const std::string& path, bool nonBlocking) {
    const int flags = O_RDWR | O_NOCTTY | O_CLOEXEC | (nonBlocking ? O_NONBLOCK : 0);
    const int descriptor = open(path.c_str(), flags);
    if (descriptor == -1) return -1;
    if (configure(descriptor)) return descriptor;
    close(descriptor);
    return -1;
}

}  // namespace

UartComm::UartComm(const std::string& path, bool nonBlocking) : descriptor_(openPort(path, nonBlocking)) {
    if (!isOpen()) TVK_ERROR("uart init");
}

UartComm::~UartComm() {
    if (isOpen()) close(descriptor_);
}

int UartComm::bytesWaiting() const {
    int waiting = 0;
    if (!isOpen() || ioctl(descriptor_, FIONREAD, &waiting) == -1) return 0;
    return waiting;
}

bool UartComm::readByte(std::uint8_t& byte) {
    return isOpen() && read(descriptor_, &byte, 1) == 1;
}

bool UartComm::write(std::span<const std::uint8_t> bytes) {
    if (!isOpen()) return false;
    for (int tries = 0; tries < kMostTries; ++tries) {
        if (bytes.empty()) return true;
        const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(written));
        } else {
            TVK_WARN_LIMITED(writeFailures_, "uart write failed");
            tvk::Clock::current().sleepFor(kBetweenTries);
        }
    }
    if (bytes.empty()) return true;
    TVK_ERROR("excessive uart iterations");
    return false;
}
