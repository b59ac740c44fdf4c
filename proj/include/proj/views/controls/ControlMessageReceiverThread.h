// "ControlMsgRx": looks at the serial link every 10 ms.
#pragma once

#include <atomic>

#include "utility/TarvekThread.h"

class ControlMessageReceiver;

class ControlMessageReceiverThread final : public TarvekThread {
public:
    // Priority 45 on processor 1. The receiver outlives the thread. Does not start it.
    explicit ControlMessageReceiverThread(ControlMessageReceiver& receiver);
    ~ControlMessageReceiverThread() override;

    // One pass of the receiver. From within a pass it only warns.
    void process();

protected:
    void init() override;
    void loop() override;

private:
    ControlMessageReceiver* const receiver_;
    std::atomic<bool> isProcessing_{false};
};
