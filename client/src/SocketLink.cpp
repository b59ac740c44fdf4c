#include "client/SocketLink.h"

#include <cerrno>
#include <poll.h>
#include <sys/socket.h>

#include "client/ClientError.h"
#include "client/UnixSocket.h"
#include "utility/Clock.h"
#include "utility/EscapedText.h"

namespace tvk::client {

namespace {

// Some forty reports. Less than a frame a millisecond would starve a peer that looks every millisecond; much
// more would make the progress of an upload run ahead of what has been taken.
constexpr int kSendBufferBytes = 16 * 1024;

}  // namespace

SocketLink::SocketLink(const std::string& path) : SocketLink(connectUnixSocket(path, SOCK_SEQPACKET), path) {}

SocketLink::SocketLink(Descriptor connected, const std::string& name)
    : socket_(std::move(connected)), name_(name) {
    setsockopt(socket_.get(), SOL_SOCKET, SO_SNDBUF, &kSendBufferBytes, sizeof kSendBufferBytes);
}

bool SocketLink::send(const Report& report) {
    const ssize_t sent = ::send(socket_.get(), report.data(), report.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent == static_cast<ssize_t>(report.size())) return true;
    if (sent == -1 && errno != EAGAIN && errno != EINTR && errno != ENOBUFS) throwGone();
    return false;
}

bool SocketLink::receive(Report& report, std::chrono::milliseconds limit) {
    pollfd input{socket_.get(), POLLIN, 0};
    if (limit.count() > 0 && Clock::current().poll(&input, 1, limit) <= 0) return false;
    // MSG_TRUNC: the packet's own length, so that a longer one is not taken for a report.
    const ssize_t received = ::recv(socket_.get(), report.data(), report.size(), MSG_DONTWAIT | MSG_TRUNC);
    if (received == 0 || (received == -1 && errno != EAGAIN && errno != EINTR)) throwGone();
    return received == static_cast<ssize_t>(report.size());
}

void SocketLink::throwGone() const {
    throw ClientError(Failure::NoLink,
                      escaped(name_) +
                          ": the other end has closed the link; either the amplifier has ended, or "
                          "another host program is connected (one at a time)");
}

}  // namespace tvk::client
