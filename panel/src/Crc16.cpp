#include "panel/Crc16.h"

#include <array>

namespace tvk::panel {

namespace {

// The remainders of all bytes.
constexpr std::array<std::uint16_t, 256> makeTable() {
    std::array<std::uint16_t, 256> table{};
    for (unsigned byte = 0; byte < table.size(); ++byte) {
        unsigned remainder = byte << 8;
        for (int bit = 0; bit < 8; ++bit)
            remainder = (remainder << 1) ^ ((remainder >> 15 & 1) * 0x11021);
        table[byte] = static_cast<std::uint16_t>(remainder);
    }
    return table;
}

constexpr std::array<std::uint16_t, 256> kTable = makeTable();

}  // namespace

std::uint16_t crc16(std::string_view bytes) {
    unsigned crc = 0;
    for (const char c : bytes)
        crc = (crc << 8 & 0xFF00) ^ kTable[crc >> 8 ^ static_cast<unsigned char>(c)];
    return static_cast<std::uint16_t>(crc);
}

}  // namespace tvk::panel
