// The check of a frame: CRC-16/XMODEM, the remainder of the bytes' polynomial, times x^16, by
// x^16 + x^12 + x^5 + 1. Over "123456789" it is 0x31C3. A byte at a time, by a table.
#pragma once

#include <cstdint>
#include <string_view>

namespace tvk::panel {

std::uint16_t crc16(std::string_view bytes);

}  // namespace tvk::panel
