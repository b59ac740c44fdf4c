// A raw pseudo-terminal: the test holds the master, the code under test opens the slave by its path.
//
// Reads of the slave begin at 64 bytes, so that a report is read as it was written. Bytes pass through a
// queue of the kernel's; awaitSlaveInput returns when they have arrived.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/ioctl.h>
#include <termios.h>
#include <thread>
#include <unistd.h>
#include <vector>

class Pty {
public:
    Pty() : master_(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        char path[64];
        if (master_ < 0 || ::grantpt(master_) || ::unlockpt(master_) ||
            ::ptsname_r(master_, path, sizeof path))
            throw std::runtime_error("no pseudo-terminal");
        path_ = path;
        slave_ = ::open(path, O_RDWR | O_NOCTTY | O_CLOEXEC);
        termios settings{};
        ::tcgetattr(slave_, &settings);
        ::cfmakeraw(&settings);
        settings.c_cc[VMIN] = 64;
        settings.c_cc[VTIME] = 0;
        ::tcsetattr(slave_, TCSANOW, &settings);
    }
    ~Pty() {
        closeSlave();
        closeMaster();
    }
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    // Of the slave.
    const std::string& path() const { return path_; }

    // The far end goes away.
    void closeMaster() { closeOnce(master_); }
    // The test's own hold on the slave.
    void closeSlave() { closeOnce(slave_); }

    // Returns when the slave can read the bytes, together with those that it has not read before.
    void write(const std::vector<std::uint8_t>& bytes) const {
        const int before = slaveInput();
        if (::write(master_, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
            throw std::runtime_error("the pseudo-terminal is full");
        while (slaveInput() < before + static_cast<int>(bytes.size()))
            std::this_thread::yield();
    }

    // Bytes that the slave can read.
    int slaveInput() const {
        int count = 0;
        ::ioctl(slave_, FIONREAD, &count);
        return count;
    }

    // Blocks until that many bytes have come from the slave.
    std::vector<std::uint8_t> read(std::size_t count) const {
        std::vector<std::uint8_t> bytes(count);
        for (std::size_t have = 0; have < count;) {
            const ssize_t got = ::read(master_, bytes.data() + have, count - have);
            if (got <= 0) throw std::runtime_error("the slave is closed");
            have += static_cast<std::size_t>(got);
        }
        return bytes;
    }

    int slaveDescriptor() const { return slave_; }

private:
    static void closeOnce(int& descriptor) {
        if (descriptor >= 0) ::close(descriptor);
        descriptor = -1;
    }

    int master_ = -1;
    int slave_ = -1;
    std::string path_;
};
