// "updateButtonRx": waits for the button on the back panel.
#pragma once

#include "utility/TarvekThread.h"

class UpdateButtonGPIOReceiver;

class UpdateButtonGPIOReceiverThread final : public TarvekThread {
public:
    // Priority 45 on processor 1. The receiver outlives the thread. Does not start it.
    explicit UpdateButtonGPIOReceiverThread(UpdateButtonGPIOReceiver& receiver);
    ~UpdateButtonGPIOReceiverThread() override;

protected:
    void init() override;
    void loop() override;

private:
    UpdateButtonGPIOReceiver* const receiver_;
};
