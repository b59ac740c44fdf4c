// tarvek-desk with its time in the test's hand: the panel's line, the host's socket, the button and the clock
// as other programs have them.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "blackbox/support/DeskProcess.h"
#include "blackbox/support/DeskRun.h"
#include "panel/Frame.h"

class HeldDesk {
public:
    using Report = std::array<std::uint8_t, 64>;

    // Starts it with these arguments besides --clock virtual --hold, and waits until it is ready. Throws
    // std::runtime_error when it does not come to that.
    HeldDesk(const std::filesystem::path& folder, const std::vector<std::string>& arguments);
    ~HeldDesk();
    HeldDesk(const HeldDesk&) = delete;
    HeldDesk& operator=(const HeldDesk&) = delete;

    // Lets time move on.
    void run(double seconds);

    // Lets time move on by so much and kills the process somewhere on the way.
    void runAndKill(double seconds);

    // All that has been let pass.
    double time() const { return time_; }

    // The clock serves one program at a time: between these two it may be another one.
    void lendClock();
    void takeClockBack();

    void sendToAmplifier(const std::string& bytes) const;
    void turn(const std::string& pin, float value) const;
    void move(const std::string& pin, std::int32_t value) const;

    // What the amplifier has sent to its panel since the last call.
    std::string sentToPanel() const;

    void press(bool isDown) const;

    // One text of the ready line: product, uart, hid, button, clock and so on.
    const std::string& readyText(const std::string& name) const;

    DeskProcess& process() { return process_; }

    // Ends it in order, so that its files are whole.
    void stop();

private:
    void request(double seconds) const;

    DeskProcess process_;
    std::vector<std::pair<std::string, std::string>> readyTexts_;
    int uart_ = -1;
    int button_ = -1;
    int clock_ = -1;
    double time_ = 0.0;
};
