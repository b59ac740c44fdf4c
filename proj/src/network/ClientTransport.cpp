#include "proj/network/ClientTransport.h"

#include "core/Messaging/HidGadgetDevice.h"
#include "core/Messaging/HidGadgetReceiver.h"
#include "core/Messaging/HidGadgetSender.h"

namespace tvk {

namespace {

constexpr std::size_t kReportSize = 64;
constexpr std::chrono::milliseconds kReceiveTimeout{0};

}  // namespace

ClientTransport hidTransport(const std::string& devicePath) {
    auto device = std::make_unique<HidGadgetDevice>();
    auto sender = std::make_unique<HidGadgetSender>(*device, kReportSize);
    auto receiver = std::make_unique<HidGadgetReceiver>(*device, kReportSize, kReceiveTimeout);
    return {devicePath, std::move(device), std::move(sender), std::move(receiver)};
}

}  // namespace tvk
