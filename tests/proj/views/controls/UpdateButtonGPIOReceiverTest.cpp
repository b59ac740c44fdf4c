#include <atomic>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "proj/models/SystemInfoModel.h"
#include "proj/views/controls/UpdateButtonGPIOReceiver.h"
#include "support/HeldClock.h"
#include "support/LogRecorder.h"
#include "support/TemporaryFolder.h"
#include "utility/ProductPaths.h"

namespace {

using namespace std::chrono_literals;
using Lines = std::vector<std::string>;

// A button that is a FIFO, and a settings file that a restore deletes. The one thread that waits for the
// clock is "factoryRestore".
class UpdateButtonGPIOReceiverTest : public testing::Test {
protected:
    UpdateButtonGPIOReceiverTest() {
        std::filesystem::create_directories(folder.path() / "gpio/gpio110");
        std::filesystem::create_directories(folder.path() / "gpio/gpio92");
        std::filesystem::create_directories(folder.path() / "user");
        std::ofstream(folder.file("gpio/export")).flush();
        std::ofstream(folder.file("gpio/gpio92/direction")).flush();
        mkfifo(folder.file("gpio/gpio110/value").c_str(), 0600);
        button = open(folder.file("gpio/gpio110/value").c_str(), O_RDWR);
        tvk::ProductPaths::set(folder.file("home"), folder.file("user"));
        systemInfo.emplace();
        makeSettings();
        log.clear();
        receiver.emplace(signals, *systemInfo, folder.file("gpio"), static_cast<short>(POLLIN));
        clock.advanceInStep(1, 100ms);
    }
    ~UpdateButtonGPIOReceiverTest() override {
        clock.release();
        receiver.reset();
        close(button);
        tvk::ProductPaths::set(tvk::ProductPaths::kHomeRoot, tvk::ProductPaths::kUserData);
    }

    void makeSettings() const { std::ofstream(folder.file("user/globalSettings.json")) << "{}"; }
    bool isRestored() const { return !std::filesystem::exists(folder.path() / "user/globalSettings.json"); }
    std::string contentOf(const std::string& name) const {
        std::string text;
        std::getline(std::ifstream(folder.file(name)), text);
        return text;
    }
    void hold(std::chrono::nanoseconds time) { clock.advanceInStep(1, time); }

    TemporaryFolder folder;
    LogRecorder log;
    HeldClock clock;
    FrontPanelSignals signals;
    int button = -1;
    std::optional<tvk::SystemInfoModel> systemInfo;
    std::optional<UpdateButtonGPIOReceiver> receiver;
};

TEST_F(UpdateButtonGPIOReceiverTest, ExportsTheLed) {
    EXPECT_EQ(contentOf("gpio/export"), "92");
    EXPECT_EQ(log.complaints(), Lines{});
}

TEST_F(UpdateButtonGPIOReceiverTest, APressOnTheLineIsTheSignalAndAReleaseIsNot) {
    std::atomic<int> presses{0};
    const nod::connection counted = signals.of(Button::FirmwareUpdate).connect([&] { ++presses; });
    ASSERT_EQ(write(button, "1\n0\n1\n", 6), 6);
    while (presses < 2)
        std::this_thread::yield();
    EXPECT_EQ(presses, 2);
    EXPECT_EQ(log.startingWith("UpdateButtonGPIOReceiver: "),
              (Lines{"UpdateButtonGPIOReceiver: eventHandler fired 1",
                     "UpdateButtonGPIOReceiver: eventHandler fired 0",
                     "UpdateButtonGPIOReceiver: eventHandler fired 1"}));
}

TEST_F(UpdateButtonGPIOReceiverTest, HeldForNineAndAHalfSecondsItDoesNothing) {
    receiver->eventHandler(1);
    hold(9500ms);
    EXPECT_FALSE(isRestored());
    receiver->eventHandler(0);
    hold(20s);
    EXPECT_FALSE(isRestored());
    EXPECT_EQ(contentOf("gpio/gpio92/direction"), "");
}

TEST_F(UpdateButtonGPIOReceiverTest, HeldForTenSecondsItRestoresAndLightsTheLed) {
    receiver->eventHandler(1);
    hold(9960ms);
    EXPECT_FALSE(isRestored());
    hold(40ms);
    EXPECT_TRUE(isRestored());
    EXPECT_EQ(contentOf("gpio/gpio92/direction"), "high");
}

TEST_F(UpdateButtonGPIOReceiverTest, HeldOnItDoesNotRestoreAgain) {
    receiver->eventHandler(1);
    hold(10s);
    EXPECT_TRUE(isRestored());
    makeSettings();
    hold(60s);
    EXPECT_FALSE(isRestored());
}

TEST_F(UpdateButtonGPIOReceiverTest, ReleasedAndHeldAnewItRestoresAgain) {
    receiver->eventHandler(1);
    hold(10s);
    makeSettings();
    receiver->eventHandler(0);
    hold(20ms);
    receiver->eventHandler(1);
    hold(9900ms);
    EXPECT_FALSE(isRestored()) << "the time begins at the press";
    hold(100ms);
    EXPECT_TRUE(isRestored());
}

TEST_F(UpdateButtonGPIOReceiverTest, PressesOneAfterAnotherAreNoHold) {
    for (int press = 0; press < 4; ++press) {
        receiver->eventHandler(1);
        hold(5s);
        receiver->eventHandler(0);
        hold(40ms);
    }
    EXPECT_FALSE(isRestored());
}

TEST_F(UpdateButtonGPIOReceiverTest, AnEventWithinAnEventOnlyWarns) {
    const nod::connection again =
        signals.of(Button::FirmwareUpdate).connect([&] { receiver->eventHandler(0); });
    receiver->eventHandler(1);
    EXPECT_EQ(log.complaints(), Lines{"Warn UpdateButtonGPIOReceiverThread is already running."});
    hold(10s);
    EXPECT_TRUE(isRestored()) << "the button counts as down";
}

TEST(UpdateButtonWithoutGpioTest, IsOneWarningForEachFileAndTheThreadsEnd) {
    const TemporaryFolder folder;
    LogRecorder log;
    HeldClock clock;
    FrontPanelSignals signals;
    tvk::ProductPaths::set(folder.file("home"), folder.file("user"));
    tvk::SystemInfoModel systemInfo;
    log.clear();
    {
        UpdateButtonGPIOReceiver receiver(signals, systemInfo, folder.file("gpio"), POLLPRI | POLLERR);
        clock.advanceInStep(2, 1s);
        clock.release();
    }
    tvk::ProductPaths::set(tvk::ProductPaths::kHomeRoot, tvk::ProductPaths::kUserData);
    EXPECT_EQ(log.count("Warn Failed to set up the norvane back panel LED as an output."), 1);
    EXPECT_EQ(log.count("Warn path: No such file or directory"), 1);
    EXPECT_EQ(log.count("UpdateButtonGPIOReceiverThread: thread started"), 1);
    EXPECT_TRUE(log.has("TarvekThreadUsage: thread: updateButtonRx"));
}

}  // namespace
