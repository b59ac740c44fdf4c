// Sends frames as HID reports.
//
// Towards the host a report is one zero byte, the report's id, and then the frame, padded with zeros. One
// thread at a time.
#pragma once

#include <memory>

#include "core/Messaging/ISender.h"

namespace tvk {

class HidGadgetDevice;
class HidGadgetSenderImpl;

class HidGadgetSender final : public ISender {
public:
    // reportSize in bytes, the id byte included. The device outlives the sender.
    HidGadgetSender(const HidGadgetDevice& device, std::size_t reportSize);
    ~HidGadgetSender() override;
    HidGadgetSender(const HidGadgetSender&) = delete;
    HidGadgetSender& operator=(const HidGadgetSender&) = delete;

    // The frame becomes the report that is written: id in front, padded or cut to reportSize.
    TransportStatus send(Bytes* frame) override;
    std::size_t getMaxFrameSize() const override;

private:
    std::unique_ptr<HidGadgetSenderImpl> impl_;
};

}  // namespace tvk
