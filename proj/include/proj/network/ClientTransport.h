// The link that a client comes in on: a device, and a sender and a receiver on it.
#pragma once

#include <memory>
#include <string>

#include "core/Messaging/IDevice.h"
#include "core/Messaging/IReceiver.h"
#include "core/Messaging/ISender.h"

namespace tvk {

struct ClientTransport {
    std::string devicePath;
    std::unique_ptr<IDevice> device;
    // On the device.
    std::unique_ptr<ISender> sender;
    std::unique_ptr<IReceiver> receiver;
};

// The HID gadget device of that path, 64 bytes a report, nothing waits.
ClientTransport hidTransport(const std::string& devicePath);

}  // namespace tvk
