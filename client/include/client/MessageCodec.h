// Messages to bytes and back.
#pragma once

#include <optional>
#include <span>

#include "client/Bytes.h"

class TarvekMessage;

namespace tvk::client {

// None for a message that would take more than kMaxMessageBytes, or none at all.
std::optional<Bytes> encode(const TarvekMessage& message);

// False for bytes that are no message; a field that this program does not know is none's fault.
bool decode(std::span<const std::uint8_t> bytes, TarvekMessage& message);

}  // namespace tvk::client
