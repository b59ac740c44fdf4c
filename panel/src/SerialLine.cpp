#include "panel/SerialLine.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

#include "panel/Failures.h"
#include "utility/Clock.h"

namespace tvk::panel {

namespace {

constexpr std::chrono::milliseconds kLongestStandstill{1000};

std::string systemText() {
    return std::generic_category().message(errno);
}

// Null when it is done, else what the system has against it.
const char* configure(int descriptor) {
    termios settings{};
    if (tcgetattr(descriptor, &settings) == -1)
        return "is no serial line or terminal; give one such as /dev/ttyUSB0, or the uart= of tarvek-desk";
    cfmakeraw(&settings);
    settings.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | CRTSCTS);
    settings.c_cflag |= CLOCAL | CREAD;
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    cfsetspeed(&settings, B115200);
    return tcsetattr(descriptor, TCSANOW, &settings) == 0 ? nullptr : "takes no 115200 baud, 8N1";
}

}  // namespace

SerialLine::SerialLine(const std::string& path, int stopDescriptor)
    : path_(path), stopDescriptor_(stopDescriptor) {
    descriptor_ = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor_ == -1) fail("cannot be opened: " + systemText());
    const char* const fault = configure(descriptor_);
    if (!fault) return;
    close(descriptor_);
    fail(fault);
}

SerialLine::~SerialLine() {
    close(descriptor_);
}

void SerialLine::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t taken = ::write(descriptor_, bytes.data(), bytes.size());
        if (taken > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(taken));
            continue;
        }
        if (taken == -1 && errno == EINTR) continue;
        if (taken == -1 && errno != EAGAIN) fail("cannot be written: " + systemText());
        pollfd line{descriptor_, POLLOUT, 0};
        if (Clock::current().poll(&line, 1, kLongestStandstill) == 0)
            fail("takes no more bytes; does anybody read at its other end?");
        if ((line.revents & POLLHUP) != 0) fail("was hung up");
    }
}

std::string SerialLine::read(std::chrono::milliseconds longest) {
    std::array<pollfd, 2> waited = {pollfd{descriptor_, POLLIN, 0}, pollfd{stopDescriptor_, POLLIN, 0}};
    if (Clock::current().poll(waited.data(), waited.size(), longest) <= 0) return {};
    isStopped_ = waited[1].revents != 0;
    if (waited[0].revents == 0) return {};
    std::array<char, 4096> bytes{};
    const ssize_t count = ::read(descriptor_, bytes.data(), bytes.size());
    if (count > 0) return {bytes.data(), static_cast<std::size_t>(count)};
    if (count == -1 && (errno == EAGAIN || errno == EINTR)) return {};
    fail("was hung up");
}

void SerialLine::drain() {
    tcdrain(descriptor_);
}

void SerialLine::fail(const std::string& what) const {
    throw LinkTrouble(path_ + ": " + what);
}

}  // namespace tvk::panel
