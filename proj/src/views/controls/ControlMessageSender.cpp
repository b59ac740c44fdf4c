#include "proj/views/controls/ControlMessageSender.h"

#include <mutex>

#include "core/comm/UartComm.h"

void ControlMessageSender::send(const char* name, std::int32_t value) {
    const std::lock_guard lock(mutex_);
    uart_.write(builder_.build(name, value));
}
