#include "core/Messaging/HidGadgetReceiver.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <unistd.h>

#include "core/Messaging/HidGadgetDevice.h"
#include "utility/Clock.h"
#include "utility/LimitedLog.h"

namespace tvk {

namespace {

constexpr std::size_t kSlots = 26;
constexpr std::size_t kSlotSize = 64;
constexpr std::chrono::milliseconds kNoWait{0};
constexpr short kDeviceGone = POLLERR | POLLHUP | POLLNVAL;

using Report = std::array<std::uint8_t, kSlotSize>;

TransportStatus statusOfFailedRead(int error) {
    if (error == EINPROGRESS || error == EAGAIN) return TransportStatus::NothingDone;
    if (error == EBADF) return TransportStatus::DeviceGone;
    return TransportStatus::Error;
}

}  // namespace

class HidGadgetReceiverImpl {
public:
    HidGadgetReceiverImpl(const HidGadgetDevice& d, std::size_t size, std::chrono::milliseconds wait)
        : device(d), reportSize(std::min(size, kSlotSize)), timeout(wait) {}

    TransportStatus receive() {
        const Look look = awaitInput(timeout);
        if (look.ready < 0) return TransportStatus::Error;
        if (look.ready == 0) return TransportStatus::NothingDone;
        if (look.isDeviceGone) return TransportStatus::DeviceGone;

        Report report{};
        const ssize_t count = ::read(device.descriptor(), report.data(), reportSize);
        if (count < 0) return statusOfFailedRead(errno);
        if (count == 0) return TransportStatus::DeviceGone;
        push(report);
        return TransportStatus::Success;
    }

    // A device that is gone is something to do as well.
    bool hasInput() const { return awaitInput(kNoWait).ready != 0; }

    OwnedBytes pop() {
        const std::size_t slot = head.load(std::memory_order_relaxed);
        if (slot == tail.load(std::memory_order_acquire)) return nullptr;
        auto frame = std::make_unique<Bytes>(ring[slot].data(), ring[slot].data() + reportSize - 1);
        head.store((slot + 1) % kSlots, std::memory_order_release);
        return frame;
    }

    void flush() {
        for (;;) {
            const Look look = awaitInput(kNoWait);
            if (look.ready < 0) TVK_ERROR_LIMITED(log, "Error 1 while polling device.");
            if (look.ready <= 0) return;
            if (look.isDeviceGone) {
                TVK_ERROR_LIMITED(log, "Error 2 while polling device.");
                return;
            }
            Report report{};
            const ssize_t count = ::read(device.descriptor(), report.data(), reportSize);
            if (count < 0 && errno != EAGAIN) TVK_ERROR_LIMITED(log, "Error while reading device.");
            if (count <= 0) return;
        }
    }

    const HidGadgetDevice& device;
    const std::size_t reportSize;

private:
    struct Look {
        int ready;  // as poll(2) returns it
        bool isDeviceGone;
    };

    Look awaitInput(std::chrono::milliseconds atMost) const {
        pollfd input{device.descriptor(), POLLIN, 0};
        const int ready = Clock::current().poll(&input, 1, atMost);
        return {ready, (input.revents & kDeviceGone) != 0};
    }

    void push(const Report& report) {
        const std::size_t slot = tail.load(std::memory_order_relaxed);
        const std::size_t next = (slot + 1) % kSlots;
        if (next == head.load(std::memory_order_acquire)) {
            TVK_WARN_LIMITED(log, "Tried to queue a frame when the queue is full.");
            return;
        }
        ring[slot] = report;
        tail.store(next, std::memory_order_release);
    }

    const std::chrono::milliseconds timeout;
    LimitedLog log;
    std::array<Report, kSlots> ring{};
    std::atomic<std::size_t> head{0};
    std::atomic<std::size_t> tail{0};
};

HidGadgetReceiver::HidGadgetReceiver(const HidGadgetDevice& device, std::size_t reportSize,
                                     std::chrono::milliseconds timeout)
    : impl_(std::make_unique<HidGadgetReceiverImpl>(device, reportSize, timeout)) {}

HidGadgetReceiver::~HidGadgetReceiver() = default;

TransportStatus HidGadgetReceiver::receive() {
    return impl_->receive();
}

bool HidGadgetReceiver::hasInput() const {
    return impl_->hasInput();
}

OwnedBytes HidGadgetReceiver::pop() {
    return impl_->pop();
}

void HidGadgetReceiver::flush() {
    impl_->flush();
}

std::size_t HidGadgetReceiver::getMaxFrameSize() const {
    return impl_->reportSize - 1;
}

}  // namespace tvk
