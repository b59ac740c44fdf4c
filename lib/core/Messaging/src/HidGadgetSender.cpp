#include "core/Messaging/HidGadgetSender.h"

#include <cerrno>
#include <unistd.h>

#include "core/Messaging/HidGadgetDevice.h"
#include "utility/Log.h"

namespace tvk {

namespace {

constexpr std::size_t kReportIdSize = 1;

TransportStatus statusOfFailedWrite(int error) {
    if (error == EAGAIN) return TransportStatus::NothingDone;
    if (error == EBADF) return TransportStatus::DeviceGone;
    return TransportStatus::Error;
}

}  // namespace

class HidGadgetSenderImpl {
public:
    HidGadgetSenderImpl(const HidGadgetDevice& d, std::size_t size) : device(d), reportSize(size) {}

    TransportStatus send(Bytes& frame) const {
        frame.insert(frame.begin(), kReportIdSize, 0);
        frame.resize(reportSize, 0);
        const ssize_t written = ::write(device.descriptor(), frame.data(), reportSize);
        if (written < 0) return statusOfFailedWrite(errno);
        return static_cast<std::size_t>(written) == reportSize ? TransportStatus::Success
                                                               : TransportStatus::Error;
    }

    const HidGadgetDevice& device;
    const std::size_t reportSize;
};

HidGadgetSender::HidGadgetSender(const HidGadgetDevice& device, std::size_t reportSize)
    : impl_(std::make_unique<HidGadgetSenderImpl>(device, reportSize)) {}

HidGadgetSender::~HidGadgetSender() = default;

TransportStatus HidGadgetSender::send(Bytes* frame) {
    if (!frame) {
        TVK_WARN("Tried to send a nullptr message. Returning error status.");
        return TransportStatus::Error;
    }
    return impl_->send(*frame);
}

std::size_t HidGadgetSender::getMaxFrameSize() const {
    return impl_->reportSize - kReportIdSize;
}

}  // namespace tvk
