#include "proj/views/controls/UpdateButtonGPIOReceiverThread.h"

#include <chrono>

#include "proj/views/controls/UpdateButtonGPIOReceiver.h"
#include "utility/Clock.h"
#include "utility/Log.h"

namespace {

constexpr int kPriority = 45;
constexpr int kCpu = 1;
constexpr std::chrono::milliseconds kBetweenCalls{20};

}  // namespace

UpdateButtonGPIOReceiverThread::UpdateButtonGPIOReceiverThread(UpdateButtonGPIOReceiver& receiver)
    : TarvekThread(kPriority, kCpu), receiver_(&receiver) {}

UpdateButtonGPIOReceiverThread::~UpdateButtonGPIOReceiverThread() {
    stop();
    join();
}

void UpdateButtonGPIOReceiverThread::init() {
    setName("updateButtonRx");
    tvk::log::debug("UpdateButtonGPIOReceiverThread", "thread started");
}

void UpdateButtonGPIOReceiverThread::loop() {
    receiver_->receive();
    if (isRunning()) tvk::Clock::current().sleepFor(kBetweenCalls);
}
