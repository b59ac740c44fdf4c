// CRC-16/XMODEM: polynomial x^16 + x^12 + x^5 + 1 (0x1021), initial value 0, bits as they come, nothing
// inverted at the end. Its value over the nine characters "123456789" is 0x31C3.
//
// Any thread. Source: ITU-T V.41, 2.1, with the highest coefficient first.
#pragma once

#include <cstdint>
#include <span>

namespace tvk::comm {

std::uint16_t crc16Xmodem(std::span<const std::uint8_t> bytes);

}  // namespace tvk::comm
