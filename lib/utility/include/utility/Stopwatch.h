// How long the calling thread takes for something: by the wall clock, and of processor time. Of the second an
// interruption is no part.
//
// It measures the machine whatever clock is in force. start and the readings on one thread.
#pragma once

#include <chrono>

namespace tvk {

class Stopwatch {
public:
    void start();

    std::chrono::nanoseconds wall() const;
    std::chrono::nanoseconds processor() const;

private:
    std::chrono::nanoseconds wallStart_{0};
    std::chrono::nanoseconds processorStart_{0};
};

}  // namespace tvk
