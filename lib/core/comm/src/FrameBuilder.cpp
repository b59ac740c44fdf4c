#include "core/comm/FrameBuilder.h"

#include <algorithm>
#include <iterator>

#include "core/comm/Crc16Xmodem.h"

namespace tvk::comm {

namespace {

std::uint8_t byteOf(std::uint32_t number, int index) {
    return static_cast<std::uint8_t>(number >> (8 * index));
}

bool needsEscape(std::uint8_t byte) {
    return byte == kFrameStart || byte == kFrameEnd || byte == kFrameEscape;
}

}  // namespace

std::span<const std::uint8_t> FrameBuilder::build(VariableType type, std::string_view name,
                                                  std::span<const std::uint8_t> value) {
    constexpr std::size_t kTypeAndNul = 3;
    if (name.empty() || name.find('\0') != std::string_view::npos) return {};
    if (name.size() + value.size() + kTypeAndNul > kFrameBufferBytes) return {};

    std::array<std::uint8_t, kFrameBufferBytes> plain{};
    auto end = plain.begin();
    const auto typeCode = static_cast<std::uint32_t>(type);
    *end++ = byteOf(typeCode, 0);
    *end++ = byteOf(typeCode, 1);
    end = std::copy(name.begin(), name.end(), end);
    *end++ = 0;
    end = std::copy(value.begin(), value.end(), end);
    const std::span<const std::uint8_t> covered(plain.begin(), end);
    const std::uint32_t crc = crc16Xmodem(covered);
    const std::array<std::uint8_t, 2> crcBytes = {byteOf(crc, 0), byteOf(crc, 1)};

    length_ = 0;
    const bool fits = put(kFrameStart) && putEscaped(covered) && putEscaped(crcBytes) && put(kFrameEnd);
    if (!fits) return {};
    return {buffer_.data(), length_};
}

std::span<const std::uint8_t> FrameBuilder::build(std::string_view name, std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    const std::array<std::uint8_t, 4> bytes = {byteOf(bits, 0), byteOf(bits, 1), byteOf(bits, 2),
                                               byteOf(bits, 3)};
    return build(VariableType::Int32, name, bytes);
}

bool FrameBuilder::put(std::uint8_t byte) {
    if (length_ == buffer_.size()) return false;
    buffer_[length_++] = byte;
    return true;
}

bool FrameBuilder::putEscaped(std::span<const std::uint8_t> bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [this](std::uint8_t byte) {
        return (!needsEscape(byte) || put(kFrameEscape)) && put(byte);
    });
}

}  // namespace tvk::comm
