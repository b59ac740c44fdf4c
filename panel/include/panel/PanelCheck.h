// Plays the amplifier to a panel under test and judges its answers.
//
//   1. The three requests of a start-up: the product and every control have to come.
//   2. Each request again, alone: it has to be answered as often as it is made.
//   3. Faulty bytes, each with a good request behind them: the request has to be answered, and once.
//
// Every frame that comes is judged on its way: whether it is whole, known, of its type and in its range.
#pragma once

#include <chrono>
#include <functional>
#include <ostream>
#include <set>
#include <string>

#include "panel/Conversation.h"

namespace tvk::panel {

class PanelCheck {
public:
    // patience: how long an answer may take. out: one line for each finding, then one that sums up.
    PanelCheck(Conversation& panel, std::chrono::nanoseconds patience, std::ostream& out)
        : panel_(panel), patience_(patience), out_(out) {}

    // How many findings there were. Ends early when the line was told to stop.
    int run();

private:
    void checkStart();
    void checkEachRequest();
    void checkFaultyBytes();
    void checkSurvives(const std::string& about, const std::string& bytes);

    void judge(const Received& received);
    // Waits until seen_ holds all of them, or patience ends.
    void await(const std::set<std::string>& pins);
    void listenFor(std::chrono::nanoseconds duration, const std::function<bool()>& isEnough);
    std::set<std::string> pinsOfProduct() const;
    void find(const std::string& finding);

    Conversation& panel_;
    const std::chrono::nanoseconds patience_;
    std::ostream& out_;
    std::set<std::string> findings_;
    std::set<std::string> seen_;  // pins, since the last request
    int products_ = 0;            // frames of the product straps since the last request
    int product_ = -1;
    int frames_ = 0;
    bool isStopped_ = false;
};

}  // namespace tvk::panel
