// Trouble on request: what the virtual card does wrong, and when.
//
// Periods are counted from the transport's start: period N holds the frames 32 N to 32 N + 31 of the guitar.
//   xrun-capture@N    the read of period N finds the capture overrun (-EPIPE)
//   xrun-playback@N   the write after the read of period N finds the playback underrun (-EPIPE)
//   short-read@N      the read of period N ends after half of it, the next one with -EPIPE
//   gone@N+M          from the end of period N on, whose read fails, no call succeeds for M periods
#pragma once

#include <cstdint>
#include <string>

namespace tvk::desk {

struct Fault {
    enum class Kind { XrunCapture, XrunPlayback, ShortRead, Gone };
    Kind kind = Kind::XrunCapture;
    std::uint64_t period = 0;
    std::uint64_t periods = 0;  // of Gone alone

    // Reads one of the forms above. Throws std::invalid_argument with one line of text for anything else.
    static Fault parse(const std::string& text);
};

}  // namespace tvk::desk
