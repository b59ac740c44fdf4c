// The serial port: 115200 baud, 8 data bits, no parity, one stop bit, raw, modem lines ignored.
//
// Threads: reading on one thread, writing on one thread at a time; the two may overlap.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "utility/LimitedLog.h"

class UartComm {
public:
    // Opens the device and discards what it had received before. A device that is not there or is no terminal
    // is the error "uart init" in the log: nothing is received then, and nothing sent.
    explicit UartComm(const std::string& path, bool nonBlocking = true);
    ~UartComm();
    UartComm(const UartComm&) = delete;
    UartComm& operator=(const UartComm&) = delete;

    bool isOpen() const { return descriptor_ != -1; }

    // How many bytes wait; 0 when the port is not open or has failed.
    int bytesWaiting() const;

    // False when there is none (in non-blocking mode) or the port has failed.
    bool readByte(std::uint8_t& byte);

    // Until all bytes are out, in at most 100 tries, a millisecond after each that failed. A failed try and
    // the end of the tries are in the log; false then, and at once when the port is not open.
    bool write(std::span<const std::uint8_t> bytes);

private:
    int descriptor_;
    tvk::LimitedLog writeFailures_;
};
