// The amplifier's end of a USB HID link: the character device of the Linux HID gadget driver.
//
// Opened for reading and writing, without blocking and never as a controlling terminal, since a
// pseudo-terminal in raw mode serves as well. One thread at a time.
#pragma once

#include <memory>

#include "core/Messaging/IDevice.h"

namespace tvk {

class HidGadgetDeviceImpl;

class HidGadgetDevice final : public IDevice {
public:
    HidGadgetDevice();
    ~HidGadgetDevice() override;
    HidGadgetDevice(const HidGadgetDevice&) = delete;
    HidGadgetDevice& operator=(const HidGadgetDevice&) = delete;

    // A failure is warned of once, until it has been open in between.
    bool open(const std::string& path) override;
    bool isOpen() const override;
    void close() override;

    // The file descriptor, -1 while closed.
    int descriptor() const;

private:
    std::unique_ptr<HidGadgetDeviceImpl> impl_;
};

}  // namespace tvk
