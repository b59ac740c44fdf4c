// A serial line, or the terminal of a pseudo-terminal: raw, 115200 baud, 8 data bits, no parity, one stop
// bit, modem lines ignored. What came before it was opened is kept.
//
// One thread. Every call throws LinkTrouble when the line fails.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace tvk::panel {

class SerialLine {
public:
    // stopDescriptor: reading ends when it is readable; -1 for none.
    explicit SerialLine(const std::string& path, int stopDescriptor = -1);
    ~SerialLine();
    SerialLine(const SerialLine&) = delete;
    SerialLine& operator=(const SerialLine&) = delete;

    const std::string& path() const { return path_; }

    // Returns when the line has taken all of it. A line that takes nothing for a second is trouble.
    void write(std::string_view bytes);

    // What has come; waits for it, but no longer than that.
    std::string read(std::chrono::milliseconds longest);

    // Waits until the last byte is out on the wire.
    void drain();

    bool isStopped() const { return isStopped_; }

private:
    [[noreturn]] void fail(const std::string& what) const;

    const std::string path_;
    const int stopDescriptor_;
    int descriptor_ = -1;
    bool isStopped_ = false;
};

}  // namespace tvk::panel
