#include "proj/views/controls/TarvekGPIOPoll.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/eventfd.h>
#include <unistd.h>

#include "utility/Clock.h"
#include "utility/Exception.h"
#include "utility/Log.h"

namespace {

constexpr std::chrono::milliseconds kNoTimeout{-1};
constexpr std::size_t kMostValueBytes = 10;

class OpenFile {
public:
    explicit OpenFile(const std::string& path)
        : descriptor_(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {}
    ~OpenFile() {
        if (descriptor_ != -1) close(descriptor_);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int descriptor() const { return descriptor_; }

private:
    const int descriptor_;
};

std::optional<int> numberIn(const std::string& text) {
    try {
        return std::stoi(text);
    } catch (const std::logic_error&) {
        return std::nullopt;
    }
}

int makeEvent() {
    const int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor == -1) TVK_THROW("eventfd: %s", std::strerror(errno));
    return descriptor;
}

// Values out of what a read gave: of a file that is rewound, the one it holds; of a stream, one a line, of
// which the last may be in the next read.
class ValueReader {
public:
    explicit ValueReader(int descriptor)
        : descriptor_(descriptor), isStream_(lseek(descriptor, 0, SEEK_CUR) == -1) {}

    bool isStream() const { return isStream_; }

    // False when nothing could be read.
    bool read(const std::function<void(int)>& callback) {
        if (!isStream_) lseek(descriptor_, 0, SEEK_SET);
        std::array<char, kMostValueBytes> bytes;
        const ssize_t count = ::read(descriptor_, bytes.data(), bytes.size());
        if (count == -1 && (errno == EAGAIN || errno == EINTR)) return true;
        if (count <= 0) return false;
        const std::string_view text(bytes.data(), static_cast<std::size_t>(count));
        if (isStream_)
            takeLines(text, callback);
        else
            tell(std::string(text), callback);
        return true;
    }

private:
    void takeLines(std::string_view text, const std::function<void(int)>& callback) {
        for (const char c : text) {
            if (c != '\n') {
                // No value is this long; the rest of such a line says nothing.
                if (line_.size() < kMostValueBytes) line_ += c;
                continue;
            }
            tell(line_, callback);
            line_.clear();
        }
    }

    static void tell(const std::string& text, const std::function<void(int)>& callback) {
        if (const std::optional<int> value = numberIn(text)) callback(*value);
    }

    const int descriptor_;
    const bool isStream_;
    std::string line_;
};

}  // namespace

TarvekGPIOPoll::TarvekGPIOPoll(short pollEvents) : pollEvents_(pollEvents), stopEvent_(makeEvent()) {}

TarvekGPIOPoll::~TarvekGPIOPoll() {
    close(stopEvent_);
}

void TarvekGPIOPoll::poll(const std::string& path, const std::function<void(int)>& callback) {
    const OpenFile file(path);
    if (file.descriptor() == -1) {
        complain("path");
        return;
    }
    ValueReader reader(file.descriptor());
    // The value as it stands is no event; reading it arms the line.
    if (!reader.isStream()) reader.read([](int) {});
    hasComplained_ = false;
    while (waitForEvent(file.descriptor()))
        if (!reader.read(callback)) return;
}

// False when it is over.
bool TarvekGPIOPoll::waitForEvent(int descriptor) {
    std::array<pollfd, 2> waited = {pollfd{descriptor, pollEvents_, 0}, pollfd{stopEvent_, POLLIN, 0}};
    while (tvk::Clock::current().poll(waited.data(), waited.size(), kNoTimeout) == -1) {
        if (errno == EINTR) continue;
        complain("poll");
        return false;
    }
    return waited[1].revents == 0;
}

void TarvekGPIOPoll::complain(const char* text) {
    if (!hasComplained_) TVK_WARN("%s: %s", text, std::strerror(errno));
    hasComplained_ = true;
}

void TarvekGPIOPoll::stop() {
    const std::uint64_t one = 1;
    // A counter that is full has stopped the poll already.
    [[maybe_unused]] const ssize_t written = write(stopEvent_, &one, sizeof one);
}
