#include "desk/ClockDoor.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include "desk/Refusal.h"
#include "desk/UnixSocket.h"
#include "panel/Failures.h"
#include "panel/Script.h"

namespace tvk::desk {

namespace {

constexpr std::size_t kLongestLine = 256;

std::string secondsOf(std::chrono::nanoseconds time) {
    constexpr std::chrono::nanoseconds::rep kPerSecond = 1'000'000'000;
    std::array<char, 40> text{};
    const auto count = time.count();
    std::snprintf(text.data(), text.size(), "%lld.%09lld", static_cast<long long>(count / kPerSecond),
                  static_cast<long long>(count % kPerSecond));
    return text.data();
}

}  // namespace

ClockDoor::ClockDoor(const std::filesystem::path& socket, VirtualTime& time)
    : time_(time),
      listener_(listenAt(socket, SOCK_STREAM)),
      endEvent_(eventfd(0, EFD_CLOEXEC)),
      thread_([this] { run(); }) {
    pthread_setname_np(thread_.native_handle(), "DeskClock");
}

ClockDoor::~ClockDoor() {
    eventfd_write(endEvent_, 1);
    thread_.join();
    close(endEvent_);
    close(listener_);
}

// False at the end.
bool ClockDoor::waitFor(int descriptor) const {
    std::array<pollfd, 2> waited = {{{descriptor, POLLIN, 0}, {endEvent_, POLLIN, 0}}};
    while (poll(waited.data(), waited.size(), -1) < 0) {
    }
    return waited[1].revents == 0;
}

void ClockDoor::run() {
    while (waitFor(listener_)) {
        const int program = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (program == -1) continue;
        serve(program);
        close(program);
    }
}

void ClockDoor::serve(int program) {
    std::string line;
    std::array<char, kLongestLine> bytes{};
    while (waitFor(program)) {
        const ssize_t count = recv(program, bytes.data(), bytes.size(), 0);
        if (count <= 0) return;
        for (const char byte : std::string_view(bytes.data(), static_cast<std::size_t>(count))) {
            if (byte != '\n') {
                line += byte;
                if (line.size() > kLongestLine) return;
                continue;
            }
            const std::string reply = answer(line) + "\n";
            line.clear();
            if (send(program, reply.data(), reply.size(), MSG_NOSIGNAL) == -1) return;
        }
    }
}

std::string ClockDoor::answer(const std::string& line) {
    constexpr std::string_view kRun = "run ";
    if (line.rfind(kRun, 0) != 0) return "error unknown request; write run SECONDS";
    std::chrono::nanoseconds duration{0};
    try {
        duration = panel::readSeconds("run", line.substr(kRun.size()));
    } catch (const panel::Refusal& refusal) {
        return std::string("error ") + refusal.what();
    }
    if (!time_.run(duration)) return "error the run has ended";
    reached_ += duration;
    return "at " + secondsOf(reached_);
}

}  // namespace tvk::desk
