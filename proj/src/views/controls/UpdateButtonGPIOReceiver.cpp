#include "proj/views/controls/UpdateButtonGPIOReceiver.h"

#include <chrono>
#include <fcntl.h>
#include <string_view>
#include <utility>

#include "proj/models/SystemInfoModel.h"
#include "utility/Clock.h"
#include "utility/Log.h"
#include "utility/OsFiles.h"
#include "utility/ThreadSched.h"

namespace {

constexpr const char* kTag = "UpdateButtonGPIOReceiver";
constexpr const char* kLedLine = "92";
constexpr std::chrono::milliseconds kBetweenLooks{20};
constexpr std::chrono::seconds kHeldLongest{9};

bool writeGpio(const std::string& path, std::string_view text) {
    tvk::OsFiles& files = tvk::OsFiles::machine();
    const int descriptor = files.open(path.c_str(), O_WRONLY, 0);
    if (descriptor == -1) return false;
    const bool written = files.writeAll(descriptor, text.data(), text.size());
    files.close(descriptor);
    return written;
}

}  // namespace

UpdateButtonGPIOReceiver::UpdateButtonGPIOReceiver(FrontPanelSignals& signals,
                                                   tvk::SystemInfoModel& systemInfo, std::string gpioRoot,
                                                   short pollEvents)
    : frontPanel_(signals),
      systemInfo_(systemInfo),
      gpioRoot_(std::move(gpioRoot)),
      gpioPoll_(pollEvents),
      receiverThread_(*this) {
    if (!writeGpio(gpioRoot_ + "/export", kLedLine))
        TVK_WARN("Failed to set up the norvane back panel LED as an output.");
    receiverThread_.start();
    factoryRestoreThread_ =
        tvk::ThreadSched::start([this] { watchForFactoryRestore(); }, "factoryRestore", 1, 40, 0);
}

UpdateButtonGPIOReceiver::~UpdateButtonGPIOReceiver() {
    exitFlag_ = true;
    receiverThread_.stop();
    gpioPoll_.stop();
    factoryRestoreThread_.join();
    receiverThread_.join();
}

void UpdateButtonGPIOReceiver::receive() {
    gpioPoll_.poll(gpioRoot_ + "/gpio110/value", [this](int value) { eventHandler(value); });
}

void UpdateButtonGPIOReceiver::eventHandler(int value) {
    if (isProcessing_.exchange(true)) {
        TVK_WARN("UpdateButtonGPIOReceiverThread is already running.");
        return;
    }
    tvk::log::debug(kTag, "eventHandler fired %d", value);
    if (value == 1) {
        down_ = true;
        frontPanel_.pressButton(Button::FirmwareUpdate);
    } else if (value == 0) {
        down_ = false;
    }
    isProcessing_ = false;
}

void UpdateButtonGPIOReceiver::watchForFactoryRestore() {
    std::chrono::nanoseconds lastUp = tvk::Clock::current().now();
    bool done = false;
    while (!exitFlag_) {
        const std::chrono::nanoseconds now = tvk::Clock::current().now();
        if (!down_) {
            lastUp = now;
            done = false;
        } else if (!done && std::chrono::floor<std::chrono::seconds>(now - lastUp) > kHeldLongest) {
            restoreFactorySettings();
            done = down_;
        }
        tvk::Clock::current().sleepFor(kBetweenLooks);
    }
}

void UpdateButtonGPIOReceiver::restoreFactorySettings() {
    systemInfo_.factoryRestore();
    if (!writeGpio(gpioRoot_ + "/gpio92/direction", "high")) TVK_WARN("Failed to light the back panel LED.");
}
