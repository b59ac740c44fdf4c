// Who wants to know when a desktop client connects and goes.
#pragma once

namespace tvk {

class ClientObserver {
public:
    virtual ~ClientObserver() = default;

    // Called after the change, on the thread of ClientManager or of MessageProcessor, with no lock held. The
    // next change may have come by then: ClientManager::isConnectionOpen tells what holds.
    virtual void connectionStateChanged(bool isConnected) = 0;
};

}  // namespace tvk
