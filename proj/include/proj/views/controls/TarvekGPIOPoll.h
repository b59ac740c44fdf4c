// Waits for the changes of one input line.
//
// The file of a GPIO line holds its value: after an event it is read from its beginning. A file that cannot
// be read from a place, such as a FIFO or a terminal, gives one value a line, in the order of the events.
//
// poll on one thread; stop on any.
#pragma once

#include <functional>
#include <string>

class TarvekGPIOPoll {
public:
    // pollEvents: what announces a change, POLLPRI for GPIO lines, POLLIN for a FIFO or a terminal.
    explicit TarvekGPIOPoll(short pollEvents);
    ~TarvekGPIOPoll();
    TarvekGPIOPoll(const TarvekGPIOPoll&) = delete;
    TarvekGPIOPoll& operator=(const TarvekGPIOPoll&) = delete;

    // Calls back with the value after each event, on this thread, until stop, or until the file fails or its
    // other end is closed. A file that cannot be opened or polled is a warning, the first time of several in
    // a row. What is no number is dropped.
    void poll(const std::string& path, const std::function<void(int value)>& callback);

    // Ends the poll that is under way and every later one at once.
    void stop();

private:
    bool waitForEvent(int descriptor);
    void complain(const char* text);

    const short pollEvents_;
    const int stopEvent_;
    bool hasComplained_ = false;
};
