#include "desk/UsbPort.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <poll.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "desk/UnixSocket.h"

namespace tvk::desk {

namespace {

constexpr std::size_t kReportBytes = std::tuple_size_v<HidReport>;

}  // namespace

UsbPort::UsbPort(std::filesystem::path device, const std::filesystem::path& socket, bool isHostSimulated)
    : device_(std::move(device)),
      isHostSimulated_(isHostSimulated),
      listener_(listenAt(socket, SOCK_SEQPACKET)) {}

UsbPort::~UsbPort() {
    dropHost();
    close(listener_);
}

void UsbPort::plug() {
    if (line_) return;
    line_ = std::make_unique<PseudoTerminal>(static_cast<unsigned char>(kReportBytes));
    line_->setFlow(isHostSimulated_);
    toHost_.clear();
    // As one step, so that the amplifier finds the whole link or none.
    const std::filesystem::path made = device_.string() + ".new";
    std::filesystem::create_symlink(line_->path(), made);
    std::filesystem::rename(made, device_);
}

void UsbPort::unplug() {
    std::error_code ignored;
    std::filesystem::remove(device_, ignored);
    line_.reset();
    dropHost();
}

bool UsbPort::exchange() {
    bool isMoved = acceptHost();
    if (!line_) return isMoved;
    const bool hadHost = host_ != -1;
    isMoved |= carryToDevice();
    isMoved |= carryToHost();
    if (hadHost && host_ == -1) isMoved |= acceptHost();
    return isMoved;
}

void UsbPort::send(const HidReport& report) {
    if (line_) line_->write(report);
}

// A program whose end has not been seen yet does not keep the next one out; what it sent last goes first.
bool UsbPort::acceptHost() {
    pollfd ends[] = {{listener_, POLLIN, 0}, {host_, POLLRDHUP, 0}};  // no host is not looked at
    const bool isSomeoneThere = poll(ends, std::size(ends), 0) > 0 && ends[0].revents != 0;
    if (!isSomeoneThere || (host_ != -1 && ends[1].revents != 0)) return false;
    const int program = accept4(listener_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (program == -1) return false;
    if (!line_ || host_ != -1)
        close(program);
    else
        host_ = program;
    return true;
}

void UsbPort::dropHost() {
    if (host_ != -1) close(host_);
    host_ = -1;
}

bool UsbPort::carryToDevice() {
    if (host_ == -1) return false;
    std::array<std::uint8_t, kReportBytes + 1> packet{};
    const ssize_t count = recv(host_, packet.data(), packet.size(), MSG_DONTWAIT);
    const bool isGone = count == 0 || (count == -1 && errno != EAGAIN && errno != EINTR);
    if (isGone)
        dropHost();
    else if (count == static_cast<ssize_t>(kReportBytes))
        line_->write(std::span(packet).first(kReportBytes));
    else if (count > 0)
        std::fprintf(
            stderr,
            "tarvek-desk: a packet that is not 64 bytes long was dropped; send one report a packet\n");
    return isGone || count > 0;
}

bool UsbPort::carryToHost() {
    const bool isRead = host_ != -1 || isHostSimulated_;
    bool isMoved = line_->setFlow(isRead && toHost_.size() < kReportBytes);
    if (!isRead) return isMoved;
    if (toHost_.size() < kReportBytes) {
        const std::vector<std::uint8_t> more = line_->read(kReportBytes - toHost_.size());
        toHost_.insert(toHost_.end(), more.begin(), more.end());
        isMoved |= !more.empty();
    }
    if (toHost_.size() < kReportBytes) return isMoved;
    const bool isTaken =
        host_ == -1 || ::send(host_, toHost_.data(), toHost_.size(), MSG_DONTWAIT | MSG_NOSIGNAL) > 0;
    if (isTaken)
        toHost_.clear();
    else if (errno != EAGAIN && errno != EINTR)
        dropHost();
    return isMoved || toHost_.empty();
}

}  // namespace tvk::desk
