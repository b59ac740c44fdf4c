#include "core/Messaging/HidGadgetDevice.h"

#include <fcntl.h>
#include <unistd.h>

#include "utility/Log.h"

namespace tvk {

class HidGadgetDeviceImpl {
public:
    int fd = -1;
    bool isOpen = false;
    bool isFailureKnown = false;
};

HidGadgetDevice::HidGadgetDevice() : impl_(std::make_unique<HidGadgetDeviceImpl>()) {}

HidGadgetDevice::~HidGadgetDevice() {
    close();
}

bool HidGadgetDevice::open(const std::string& path) {
    if (impl_->isOpen) return false;
    const int fd = ::open(path.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 1) {
        // Descriptor 0 belongs to standard input, also while that is closed.
        if (fd == 0) ::close(fd);
        if (!impl_->isFailureKnown) TVK_WARN("Failed to open HID device.");
        impl_->isFailureKnown = true;
        return false;
    }
    impl_->fd = fd;
    impl_->isOpen = true;
    impl_->isFailureKnown = false;
    log::debug("HIDDevice", "Opened device.");
    return true;
}

bool HidGadgetDevice::isOpen() const {
    return impl_->isOpen;
}

void HidGadgetDevice::close() {
    if (!impl_->isOpen) return;
    ::close(impl_->fd);
    impl_->fd = -1;
    impl_->isOpen = false;
    log::debug("HIDDevice", "Device closed.");
}

int HidGadgetDevice::descriptor() const {
    return impl_->fd;
}

}  // namespace tvk
