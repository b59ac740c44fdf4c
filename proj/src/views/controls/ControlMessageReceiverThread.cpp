#include "proj/views/controls/ControlMessageReceiverThread.h"

#include <chrono>

#include "proj/views/controls/ControlMessageReceiver.h"
#include "utility/Clock.h"
#include "utility/Log.h"

namespace {

constexpr int kPriority = 45;
constexpr int kCpu = 1;
constexpr std::chrono::milliseconds kBetweenPasses{10};

}  // namespace

ControlMessageReceiverThread::ControlMessageReceiverThread(ControlMessageReceiver& receiver)
    : TarvekThread(kPriority, kCpu), receiver_(&receiver) {}

ControlMessageReceiverThread::~ControlMessageReceiverThread() {
    stop();
    join();
}

void ControlMessageReceiverThread::init() {
    setName("ControlMsgRx");
}

void ControlMessageReceiverThread::loop() {
    process();
    tvk::Clock::current().sleepFor(kBetweenPasses);
}

void ControlMessageReceiverThread::process() {
    if (isProcessing_.exchange(true, std::memory_order_relaxed)) {
        TVK_WARN("ControlMessageReceiverThread is already running.");
        return;
    }
    receiver_->pass();
    isProcessing_.store(false, std::memory_order_relaxed);
}
