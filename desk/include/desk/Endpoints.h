// The folder ROOT/endpoints, where the amplifier and other programs find the desk's stand-ins for devices.
//
//   uart        symlink to the line that a panel program opens
//   hid         socket of the USB host (UsbPort.h)
//   button      FIFO: 1 and a newline for down, 0 and a newline for up
//   clock       socket that holds the card's time (ClockDoor.h)
//   hidg0       what the amplifier opens as its HID gadget device
//   gpio/       what it sees of /sys/class/gpio; gpio92/direction is the lamp by the button
//
// The folder is of mode 0700 and made anew for each run. One desk at a time uses a root.
#pragma once

#include <filesystem>
#include <string>

namespace tvk::desk {

class Endpoints {
public:
    // Throws Refusal when another desk uses the root, or when the folder cannot be made.
    explicit Endpoints(const std::filesystem::path& root);
    ~Endpoints();
    Endpoints(const Endpoints&) = delete;
    Endpoints& operator=(const Endpoints&) = delete;

    std::filesystem::path uart() const { return folder_ / "uart"; }
    std::filesystem::path hid() const { return folder_ / "hid"; }
    std::filesystem::path button() const { return folder_ / "button"; }
    std::filesystem::path clock() const { return folder_ / "clock"; }
    std::filesystem::path hidDevice() const { return folder_ / "hidg0"; }
    std::filesystem::path gpio() const { return folder_ / "gpio"; }

    // Puts the button down or up.
    void press(bool isDown) const;

    // Stands in for the shell, which the amplifier asks for "echo TEXT > FILE" alone; what the shell would
    // return.
    static int runShell(const std::string& command);

private:
    void makeGpio() const;

    const std::filesystem::path folder_;
    int lock_ = -1;
    int button_ = -1;
};

}  // namespace tvk::desk
