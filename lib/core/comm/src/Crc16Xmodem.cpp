#include "core/comm/Crc16Xmodem.h"

namespace tvk::comm {

namespace {

constexpr std::uint32_t kPolynomial = 0x1021;
constexpr std::uint32_t kTopBit = 0x8000;

}  // namespace

std::uint16_t crc16Xmodem(std::span<const std::uint8_t> bytes) {
    std::uint32_t remainder = 0;
    for (const std::uint8_t byte : bytes) {
        remainder ^= static_cast<std::uint32_t>(byte) << 8;
        for (int bit = 0; bit < 8; ++bit) {
            const bool carries = (remainder & kTopBit) != 0;
            remainder <<= 1;
            if (carries) remainder ^= kPolynomial;
        }
    }
    return static_cast<std::uint16_t>(remainder);
}

}  // namespace tvk::comm
