#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "proj/models/ControlProcessorBootManager.h"
#include "support/LogRecorder.h"

namespace {

using Lines = std::vector<std::string>;

TEST(ControlProcessorBootManagerTest, SetsUpItsLinesByShellCommandsAndSaysWhatTheyReturned) {
    LogRecorder log;
    Lines commands;
    const auto shell = [&](const std::string& command) {
        commands.push_back(command);
        return static_cast<int>(commands.size());
    };
    const ControlProcessorBootManager boot(shell, "/sys/class/gpio");
    EXPECT_EQ(
        commands,
        (Lines{"echo 3 > /sys/class/gpio/export", "echo 6 > /sys/class/gpio/export",
               "echo 110 > /sys/class/gpio/export", "echo in > /sys/class/gpio/gpio110/direction",
               "echo both > /sys/class/gpio/gpio110/edge", "echo 1 > /sys/class/gpio/gpio110/active_low"}));
    const std::string tag = "ControlProcessorBootManager: ";
    EXPECT_EQ(log.lines(), (Lines{tag + "gpio export 3, ret = 1", tag + "gpio export 6, ret = 2",
                                  tag + "ret = 3", tag + "ret = 4", tag + "ret = 5", tag + "ret = 6"}));
}

TEST(ControlProcessorBootManagerTest, StartsTheUpdateModeUnderReset) {
    Lines commands;
    const auto shell = [&](const std::string& command) {
        commands.push_back(command);
        return 0;
    };
    ControlProcessorBootManager boot(shell, "/gpio");
    commands.clear();
    boot.resetAndBootUpdateMode();
    EXPECT_EQ(commands, (Lines{"echo low > /gpio/gpio3/direction", "echo high > /gpio/gpio6/direction",
                               "echo high > /gpio/gpio3/direction"}));
}

}  // namespace
