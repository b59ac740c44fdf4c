// A terminal line whose far end is in this process: a program opens the slave by its path, the other side of
// the line reads and writes here.
//
// The line is raw, without echo. It stays up while the program closes and opens its end. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tvk::desk {

class PseudoTerminal {
public:
    // leastRead: what must have come before a reader of the slave sees anything, in bytes. Throws Refusal
    // when the system has no terminal left.
    explicit PseudoTerminal(unsigned char leastRead = 1);
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    const std::string& path() const { return path_; }

    // What the program has written, at most so much, without waiting. All that it wrote before the call is
    // there.
    std::vector<std::uint8_t> read(std::size_t most);

    // Hands bytes to the program, and returns when it can read them: the kernel carries them over on a thread
    // of its own. What finds the line full is lost, as on a wire.
    void write(std::span<const std::uint8_t> bytes);

    // While the flow is stopped the program's writes take nothing. Whether that is a change.
    bool setFlow(bool isFlowing);

private:
    int waitingAtSlave() const;
    bool slaveHasInput() const;

    int master_ = -1;
    int slave_ = -1;
    bool isFlowing_ = true;
    std::string path_;
};

}  // namespace tvk::desk
