// Receives HID reports and hands them on as frames.
//
// Towards the device a report is the frame from its first byte on; so that frames are of one length both
// ways, its last byte is never part of one. Reports wait in a ring of 26 slots, of which 25 can be in use;
// one that finds it full is lost, with a warning. One thread calls receive and flush, and one pop: it may be
// another.
#pragma once

#include <chrono>
#include <memory>

#include "core/Messaging/IReceiver.h"

namespace tvk {

class HidGadgetDevice;
class HidGadgetReceiverImpl;

class HidGadgetReceiver final : public IReceiver {
public:
    // reportSize in bytes, at most 64. timeout: how long receive waits for a report. The device outlives the
    // receiver.
    HidGadgetReceiver(const HidGadgetDevice& device, std::size_t reportSize,
                      std::chrono::milliseconds timeout);
    ~HidGadgetReceiver() override;
    HidGadgetReceiver(const HidGadgetReceiver&) = delete;
    HidGadgetReceiver& operator=(const HidGadgetReceiver&) = delete;

    TransportStatus receive() override;
    bool hasInput() const override;
    OwnedBytes pop() override;
    void flush() override;
    std::size_t getMaxFrameSize() const override;

private:
    std::unique_ptr<HidGadgetReceiverImpl> impl_;
};

}  // namespace tvk
