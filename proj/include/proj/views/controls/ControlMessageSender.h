// What the program tells the control processor: frames of one whole number each.
//
// Any control thread; frames never mix. A write that fails is in the log of the port.
#pragma once

#include <cstdint>

#include "core/comm/FrameBuilder.h"
#include "utility/PriorityMutex.h"

class UartComm;

class ControlMessageSender {
public:
    // The port outlives the sender.
    explicit ControlMessageSender(UartComm& uart) : uart_(uart) {}

    // 0 once the program is up.
    void sendBooting(std::int32_t value) { send("BOOTING", value); }

    // Asks for the straps that tell which amplifier this is.
    void sendGetProductId() { send("GET_PRODUCT_ID", 1); }

    // Asks for a frame of every control.
    void sendGetCurrentValues() { send("GET_CURRENT_VALUES", 1); }

    void sendClipping(std::int32_t value) { send("CLIPPING", value); }
    void sendSetTestMode(std::int32_t value) { send("SET_TEST_MODE", value); }

private:
    void send(const char* name, std::int32_t value);

    UartComm& uart_;
    tvk::PriorityMutex mutex_;
    tvk::comm::FrameBuilder builder_;
};
