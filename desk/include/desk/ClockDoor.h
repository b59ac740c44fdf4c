// The card's time in the hand of another program.
//
// On a socket of type STREAM that program writes lines "run SECONDS". Each lets held time move on by so much
// and is answered "at SECONDS", counted from where time was held first, when the card stands there again and
// everything in the process is quiet. A line that makes no sense is answered "error" and the reason; so is
// any after the run's end. One program at a time.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "desk/soundcard/VirtualTime.h"

namespace tvk::desk {

class ClockDoor {
public:
    // The time outlives it. Throws Refusal when the socket cannot be made.
    ClockDoor(const std::filesystem::path& socket, VirtualTime& time);

    // The time has been released.
    ~ClockDoor();
    ClockDoor(const ClockDoor&) = delete;
    ClockDoor& operator=(const ClockDoor&) = delete;

private:
    void run();
    void serve(int program);
    bool waitFor(int descriptor) const;
    std::string answer(const std::string& line);

    VirtualTime& time_;
    const int listener_;
    const int endEvent_;
    std::chrono::nanoseconds reached_{0};
    std::thread thread_;
};

}  // namespace tvk::desk
