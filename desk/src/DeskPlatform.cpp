#include "desk/DeskPlatform.h"

#include <poll.h>

namespace tvk::desk {

Platform deskPlatform(const ProductRoot& root, const Endpoints& endpoints, const Peers& peers, Clock& clock) {
    Platform platform = productPlatform();
    platform.homeRoot = root.homeRoot;
    platform.userData = root.userData;
    platform.uartDevice = peers.uartDevice();
    platform.hidDevice = endpoints.hidDevice();
    platform.gpioRoot = endpoints.gpio();
    platform.buttonPollEvents = POLLIN;
    platform.runShell = Endpoints::runShell;
    platform.clock = &clock;
    return platform;
}

}  // namespace tvk::desk
