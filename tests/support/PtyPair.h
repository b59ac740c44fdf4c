// A pseudo-terminal: a master in the test's hand, raw, that never blocks, and the path of its slave.
#pragma once

#include <fcntl.h>
#include <pty.h>
#include <sched.h>
#include <stdexcept>
#include <string>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

class PtyPair {
public:
    PtyPair() {
        termios raw{};
        cfmakeraw(&raw);
        char name[64];
        if (openpty(&master_, &slave_, name, &raw, nullptr) == -1) throw std::runtime_error("openpty");
        path_ = name;
        fcntl(master_, F_SETFL, O_NONBLOCK);
    }
    ~PtyPair() {
        hangUp();
        close(slave_);
    }
    PtyPair(const PtyPair&) = delete;
    PtyPair& operator=(const PtyPair&) = delete;

    const std::string& path() const { return path_; }

    template <typename Bytes>
    void send(const Bytes& bytes) {
        if (write(master_, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
            throw std::runtime_error("the terminal took less than was sent");
    }

    // Sends, and returns when all of it waits at the slave; nobody reads there meanwhile. The kernel hands
    // the bytes over on a thread of its own.
    template <typename Bytes>
    void deliver(const Bytes& bytes) {
        const int before = waiting();
        send(bytes);
        while (waiting() < before + static_cast<int>(bytes.size()))
            sched_yield();
    }

    // The next bytes that the program writes; waits for them.
    std::string receive(std::size_t count) {
        std::string text;
        while (text.size() < count) {
            text += received();
            sched_yield();
        }
        return text;
    }

    // All that has come so far.
    std::string received() {
        std::string text;
        char byte = 0;
        while (read(master_, &byte, 1) == 1)
            text += byte;
        return text;
    }

    // The settings that the program gave the slave.
    termios settings() const {
        termios now{};
        tcgetattr(slave_, &now);
        return now;
    }

    void hangUp() {
        if (master_ != -1) close(master_);
        master_ = -1;
    }

private:
    int waiting() const {
        int count = 0;
        ioctl(slave_, FIONREAD, &count);
        return count;
    }

    int master_ = -1;
    int slave_ = -1;
    std::string path_;
};
