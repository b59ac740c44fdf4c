// The button on the back panel and the LED beside it: a press is the button's signal; held for ten seconds it
// restores the factory settings, once, and lights the LED.
//
// Threads of its own, both joined by the destructor: "updateButtonRx" waits for the button and emits the
// signal, "factoryRestore" looks every 20 ms how long it has been down.
#pragma once

#include <atomic>
#include <string>
#include <thread>

#include "proj/views/controls/FrontPanelProxy.h"
#include "proj/views/controls/TarvekGPIOPoll.h"
#include "proj/views/controls/UpdateButtonGPIOReceiverThread.h"

namespace tvk {
class SystemInfoModel;
}

class UpdateButtonGPIOReceiver {
public:
    // gpioRoot: folder of the GPIO files. pollEvents: what announces a change of the button
    // (TarvekGPIOPoll.h). Starts both threads. Without the files the program runs on, with a warning for
    // each.
    UpdateButtonGPIOReceiver(FrontPanelSignals& signals, tvk::SystemInfoModel& systemInfo,
                             std::string gpioRoot, short pollEvents);
    ~UpdateButtonGPIOReceiver();
    UpdateButtonGPIOReceiver(const UpdateButtonGPIOReceiver&) = delete;
    UpdateButtonGPIOReceiver& operator=(const UpdateButtonGPIOReceiver&) = delete;

    // Waits for the button until stopped, or until its file fails. Thread updateButtonRx.
    void receive();

    // The button is down at 1 and up at 0; a press is told at once. Within an event it only warns.
    void eventHandler(int value);

private:
    void watchForFactoryRestore();
    void restoreFactorySettings();

    const FrontPanelProxy frontPanel_;
    tvk::SystemInfoModel& systemInfo_;
    const std::string gpioRoot_;
    TarvekGPIOPoll gpioPoll_;
    std::atomic<bool> down_{false};
    std::atomic<bool> isProcessing_{false};
    std::atomic<bool> exitFlag_{false};
    UpdateButtonGPIOReceiverThread receiverThread_;
    std::thread factoryRestoreThread_;
};
