// The world at the amplifier's doors: the panel, the USB host, the back panel's button, and the script that
// moves them.
//
// One thread carries everything, once a millisecond of its clock, always in the same order; so a run on the
// virtual clock repeats to the bit.
#pragma once

#include <atomic>
#include <chrono>
#include <optional>
#include <thread>

#include "desk/Endpoints.h"
#include "desk/PanelLine.h"
#include "desk/Script.h"
#include "desk/UsbPort.h"
#include "utility/Clock.h"

namespace tvk::desk {

class Peers {
public:
    struct Setting {
        // None leaves the panel to another program.
        std::optional<ControlProcessor> controlProcessor;
        bool isHostPlugged = true;
        Script script;
    };

    // Reachable when it returns. The endpoints and the clock outlive it.
    Peers(const Endpoints& endpoints, Clock& clock, Setting setting);
    ~Peers();
    Peers(const Peers&) = delete;
    Peers& operator=(const Peers&) = delete;

    // What the amplifier opens as its serial port.
    const std::string& uartDevice() const { return panel_.amplifierPath(); }

    // The script's time zero is now. Any thread.
    void startScript();

private:
    void run();
    void play(const ScriptEvent& event);

    const Endpoints& endpoints_;
    Clock& clock_;
    Script script_;
    PanelLine panel_;
    UsbPort usb_;
    std::atomic<std::chrono::nanoseconds::rep> scriptStart_;
    std::atomic<bool> isEnding_{false};
    std::thread thread_;
};

}  // namespace tvk::desk
