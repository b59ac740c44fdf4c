#include "core/comm/VariableFrame.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "core/comm/Crc16Xmodem.h"

namespace tvk::comm {

namespace {

constexpr std::size_t kTypeBytes = 2;
constexpr std::size_t kCrcBytes = 2;
constexpr std::size_t kFewestBytes = 3;
// Type, the name's NUL and CRC.
constexpr std::ptrdiff_t kFixedBytes = 5;

bool hasRightCrc(std::span<const std::uint8_t> content) {
    const std::size_t covered = content.size() - kCrcBytes;
    return crc16Xmodem(content.first(covered)) == readLittleEndian(content.subspan(covered));
}

bool isFiniteFloat(std::span<const std::uint8_t> value) {
    return std::isfinite(std::bit_cast<float>(readLittleEndian(value)));
}

bool isValueOfType(std::uint32_t type, std::span<const std::uint8_t> value) {
    if (type > static_cast<std::uint32_t>(VariableType::String)) return false;
    switch (static_cast<VariableType>(type)) {
        case VariableType::Float:
            return value.size() == 4 && isFiniteFloat(value);
        case VariableType::Uint8:
        case VariableType::Int8:
            return value.size() == 1;
        case VariableType::Uint16:
        case VariableType::Int16:
            return value.size() == 2;
        case VariableType::Uint32:
        case VariableType::Int32:
            return value.size() == 4;
        case VariableType::String:
            return true;
    }
    return false;
}

}  // namespace

std::uint32_t readLittleEndian(std::span<const std::uint8_t> bytes) {
    std::uint32_t number = 0;
    for (std::size_t i = bytes.size(); i > 0; --i)
        number = number << 8 | bytes[i - 1];
    return number;
}

std::optional<VariableFrame> decodeFrame(std::span<const std::uint8_t> content) {
    if (content.size() < kFewestBytes || content[kTypeBytes] == 0) return std::nullopt;
    const auto nameBegin = content.begin() + kTypeBytes;
    const auto nameEnd = std::find(nameBegin, content.end(), 0);
    if (nameEnd == content.end()) return std::nullopt;
    const std::ptrdiff_t nameLength = nameEnd - nameBegin;
    const std::ptrdiff_t valueLength = std::ssize(content) - kFixedBytes - nameLength;
    if (valueLength < 1 || !hasRightCrc(content)) return std::nullopt;

    const std::uint32_t type = readLittleEndian(content.first(kTypeBytes));
    const std::span<const std::uint8_t> value(nameEnd + 1, static_cast<std::size_t>(valueLength));
    if (!isValueOfType(type, value)) return std::nullopt;
    const char* const name = reinterpret_cast<const char*>(content.data() + kTypeBytes);
    return VariableFrame{static_cast<VariableType>(type),
                         std::string_view(name, static_cast<std::size_t>(nameLength)), value};
}

}  // namespace tvk::comm
