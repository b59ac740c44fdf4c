#include "client/DeskClock.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <system_error>

#include "client/ClientError.h"
#include "client/Link.h"
#include "client/UnixSocket.h"
#include "utility/Clock.h"
#include "utility/EscapedText.h"

namespace tvk::client {

namespace {

constexpr std::chrono::milliseconds kStep{1};
constexpr const char* kRunStep = "run 0.001\n";
constexpr std::string_view kAt = "at ";
constexpr std::string_view kError = "error ";

constexpr std::size_t kLongestLine = 4096;
// Of the machine's time: an amplifier that computes a millisecond for so long has stopped.
constexpr std::chrono::seconds kLongestWait{60};
// A time in nanoseconds has to fit 64 bits; three centuries.
constexpr double kLatestSeconds = 9e9;

}  // namespace

DeskClock::DeskClock(const std::string& path) : DeskClock(connectUnixSocket(path, SOCK_STREAM), path) {}

DeskClock::DeskClock(Descriptor connected, const std::string& name)
    : socket_(std::move(connected)), name_(name) {}

bool DeskClock::receive(Link& link, Report& report, std::chrono::milliseconds limit) {
    constexpr std::chrono::milliseconds kOnlyLook{0};
    for (std::chrono::milliseconds waited{0}; !link.receive(report, kOnlyLook); waited += kStep) {
        if (waited >= limit) return false;
        runStep();
    }
    return true;
}

void DeskClock::runStep() {
    const std::string answer = ask(kRunStep);
    if (answer.starts_with(kError)) fail("says \"" + escaped(answer.substr(kError.size())) + "\"");
    const std::string number = answer.starts_with(kAt) ? answer.substr(kAt.size()) : std::string();
    char* end = nullptr;
    const double seconds = std::strtod(number.c_str(), &end);
    const bool isTime = !number.empty() && *end == '\0' && seconds >= 0.0 && seconds < kLatestSeconds;
    if (!isTime) fail("answers \"" + escaped(answer.substr(0, 80)) + "\", which is no time");
    const std::chrono::nanoseconds reached(std::llround(seconds * 1e9));
    if (!origin_) origin_ = reached - kStep;
    now_ = std::max(now_ + kStep, reached - *origin_);
}

std::string DeskClock::ask(const std::string& line) {
    std::string_view rest = line;
    while (!rest.empty()) {
        const ssize_t sent = ::send(socket_.get(), rest.data(), rest.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        if (sent >= 0)
            rest.remove_prefix(static_cast<std::size_t>(sent));
        else if (errno == EAGAIN || errno == EINTR)
            awaitSocket(POLLOUT);
        else
            fail(std::generic_category().message(errno));
    }
    return readLine();
}

std::string DeskClock::readLine() {
    std::size_t end = 0;
    while ((end = buffer_.find('\n')) == std::string::npos) {
        if (buffer_.size() > kLongestLine) fail("answers with a line that does not end");
        awaitSocket(POLLIN);
        char bytes[256];
        const ssize_t received = ::recv(socket_.get(), bytes, sizeof bytes, MSG_DONTWAIT);
        if (received == 0) fail("has been closed");
        if (received == -1 && errno != EAGAIN && errno != EINTR) fail(std::generic_category().message(errno));
        if (received > 0) buffer_.append(bytes, static_cast<std::size_t>(received));
    }
    std::string line = buffer_.substr(0, end);
    buffer_.erase(0, end + 1);
    return line;
}

void DeskClock::awaitSocket(short events) {
    pollfd descriptor{socket_.get(), events, 0};
    if (Clock::current().poll(&descriptor, 1, kLongestWait) == 0) fail("does not answer");
}

void DeskClock::fail(const std::string& what) const {
    throw ClientError(Failure::NoLink, "the clock at " + escaped(name_) + " " + what);
}

}  // namespace tvk::client
