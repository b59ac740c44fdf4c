// The world at the amplifier's doors: the panel, the USB host, the back panel's button, and the script that
// moves them.
//
// Everything is carried once a millisecond, always in the same order: on a thread of its own in real time; in
// virtual time by whoever moves that, so that a run repeats to the bit.
#pragma once

#include <atomic>
#include <chrono>
#include <optional>
#include <thread>

#include "desk/Endpoints.h"
#include "desk/PanelLine.h"
#include "desk/Script.h"
#include "desk/UsbPort.h"
#include "desk/soundcard/VirtualTime.h"

namespace tvk::desk {

class Peers {
public:
    struct Setting {
        // None leaves the panel to another program.
        std::optional<panel::ControlProcessor> controlProcessor;
        bool isHostPlugged = true;
        Script script;
    };

    // Reachable when it returns. Given a virtual time, lives in its ticks: no audio thread has been marked
    // yet, and none is left at the end. The endpoints and the time outlive it.
    Peers(const Endpoints& endpoints, VirtualTime* time, Setting setting);
    ~Peers();
    Peers(const Peers&) = delete;
    Peers& operator=(const Peers&) = delete;

    // What the amplifier opens as its serial port.
    const std::string& uartDevice() const { return panel_.amplifierPath(); }

    // The script's time zero is now. Any thread.
    void startScript();

private:
    void run();
    std::chrono::nanoseconds now() const;
    // Whether anything was moved.
    bool tick();
    void play(const ScriptEvent& event);

    const Endpoints& endpoints_;
    VirtualTime* const time_;
    Script script_;
    PanelLine panel_;
    UsbPort usb_;
    std::atomic<std::chrono::nanoseconds::rep> scriptStart_;
    std::atomic<bool> isEnding_{false};
    std::thread thread_;
};

}  // namespace tvk::desk
