// The program on one end of a pseudo-terminal, the test on the other, in a time of their own.
//
// The program runs on the test's thread. Whenever it waits, the peer has its turn: it sees all that the
// program has written, and what it answers is there when the wait ends.
#pragma once

#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "panel/Program.h"
#include "support/PtyPair.h"
#include "utility/Clock.h"

class PeerClock : public tvk::Clock {
public:
    PeerClock() { install(this); }
    ~PeerClock() override { install(nullptr); }
    PeerClock(const PeerClock&) = delete;
    PeerClock& operator=(const PeerClock&) = delete;

    std::chrono::nanoseconds now() override { return now_; }
    void sleepFor(std::chrono::nanoseconds duration) override {
        now_ += duration;
        peer();
    }
    int poll(pollfd* descriptors, nfds_t count, std::chrono::milliseconds timeout) override {
        if (const int ready = ::poll(descriptors, count, 0)) return ready;
        peer();
        if (const int ready = ::poll(descriptors, count, 0)) return ready;
        now_ += timeout;
        return 0;
    }

    std::function<void()> peer = [] {};

private:
    std::chrono::nanoseconds now_{0};
};

class LineTest : public testing::Test {
protected:
    // Runs "tarvek-panel WORDS" to its end; out and err are what it printed.
    int run(std::vector<std::string> words) {
        words.insert(words.begin(), "tarvek-panel");
        std::vector<const char*> arguments;
        for (const std::string& word : words)
            arguments.push_back(word.c_str());
        std::ostringstream output;
        std::ostringstream errors;
        const int status = tvk::panel::runProgram(static_cast<int>(arguments.size()), arguments.data(),
                                                  output, errors, stopDescriptor);
        out = output.str();
        err = errors.str();
        return status;
    }
    // The same on the line.
    int runOnLine(std::vector<std::string> words) {
        words.insert(words.begin(), pty.path());
        return run(std::move(words));
    }

    // What comes over the line, and when.
    void deliver(std::multimap<double, std::string> arrivals) {
        clock.peer = [this, arrivals = std::move(arrivals)]() mutable {
            for (; !arrivals.empty() && arrivals.begin()->first <= seconds();
                 arrivals.erase(arrivals.begin()))
                pty.send(arrivals.begin()->second);
        };
    }

    double seconds() { return std::chrono::duration<double>(clock.now()).count(); }

    PtyPair pty;
    PeerClock clock;
    int stopDescriptor = -1;
    std::string out;
    std::string err;
};
