#include "client/HidrawLink.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <system_error>

#include "client/ClientError.h"
#include "utility/Clock.h"
#include "utility/EscapedText.h"

namespace tvk::client {

namespace {

bool isPassing(int error) {
    return error == EAGAIN || error == EINTR;
}

}  // namespace

HidrawLink::HidrawLink(const std::string& path)
    : node_(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)), path_(path) {
    if (node_.get() != -1) return;
    const int error = errno;
    throw ClientError(Failure::NoLink,
                      escaped(path) + ": " + std::generic_category().message(error) +
                          (error == EACCES ? "; a udev rule can give you access (docs/client_protocol.md)"
                                           : "; is the amplifier plugged in?"));
}

bool HidrawLink::send(const Report& report) {
    std::array<std::uint8_t, 1 + kReportBytes> numbered{};
    std::ranges::copy(report, numbered.begin() + 1);
    const ssize_t sent = ::write(node_.get(), numbered.data(), numbered.size());
    if (sent == -1 && !isPassing(errno)) throwGone();
    return sent == static_cast<ssize_t>(numbered.size());
}

bool HidrawLink::receive(Report& report, std::chrono::milliseconds limit) {
    pollfd input{node_.get(), POLLIN, 0};
    if (limit.count() > 0 && Clock::current().poll(&input, 1, limit) <= 0) return false;
    // One byte more than a report has, so that a longer one is not taken for it.
    std::array<std::uint8_t, kReportBytes + 1> bytes{};
    const ssize_t received = ::read(node_.get(), bytes.data(), bytes.size());
    if (received == 0 || (received == -1 && !isPassing(errno))) throwGone();
    if (received != static_cast<ssize_t>(report.size())) return false;
    std::copy_n(bytes.begin(), report.size(), report.begin());
    return true;
}

void HidrawLink::throwGone() const {
    throw ClientError(Failure::NoLink,
                      escaped(path_) +
                          ": the amplifier is gone; plug it in again, its node may then have "
                          "another number");
}

}  // namespace tvk::client
