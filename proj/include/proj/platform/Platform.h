// Where the program runs: the one record of what differs between the product, a desk and a test.
//
// The product's record is fixed at build time (productPlatform). The desk program and the tests fill their
// own. Nothing else in the program knows a path outside the two roots, a device, a shell or a clock.
#pragma once

#include <filesystem>
#include <functional>
#include <poll.h>
#include <string>

#include "utility/Clock.h"

class BlockTimer;
class Model;

namespace tvk {

class StopSignal;

// What the main thread does between the last construction and the first destruction. Called on the main
// thread with the engine running; the objects are destroyed in order as soon as it returns. It has to return
// when stop.arrived(); an exception from it unwinds the objects and ends the process with a status not 0.
using Session = std::function<void(Model& model, StopSignal& stop)>;

struct Platform {
    // Read-only product data: the profile, the factory responses, the release version.
    std::filesystem::path homeRoot = "/home/root";

    // What the amplifier writes: settings, catalogues, uploaded responses.
    std::filesystem::path userData = "/mnt/user-data";

    // Names for snd_pcm_open.
    std::string captureDevice = "hw:0,0";
    std::string playbackDevice = "hw:0,0";

    // The serial port to the control processor, and the device file of the USB link to a desktop client.
    std::string uartDevice = "/dev/ttymxc1";
    std::string hidDevice = "/dev/hidg0";

    // Folder of the GPIO files, and the events of poll(2) that announce a change of the back panel's button.
    std::string gpioRoot = "/sys/class/gpio";
    short buttonPollEvents = POLLPRI | POLLERR;

    // Runs one shell command and returns what system(3) would.
    std::function<int(const std::string& command)> runShell;

    // The clock behind every wait, null for the machine's own. It outlives the run.
    Clock* clock = nullptr;

    // Called after each time that a new preset has been given all controls of the panel, on the thread that
    // did it.
    std::function<void()> panelReplayed = [] {};

    // Measures the blocks of the audio thread, or null. It outlives the run.
    BlockTimer* blockTimer = nullptr;

    // Never empty.
    Session session;
};

// The amplifier itself: the members' defaults, system(3), and a session that waits for the stop signal.
Platform productPlatform();

}  // namespace tvk
