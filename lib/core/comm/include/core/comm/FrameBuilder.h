// Makes the bytes of a frame (VariableFrame.h), ready to be written.
//
// One thread at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "core/comm/VariableFrame.h"

namespace tvk::comm {

class FrameBuilder {
public:
    // The frame, until the next call. Empty when it is longer than the buffer, or when the name is empty or
    // holds a NUL. value: little-endian, of the type's size.
    std::span<const std::uint8_t> build(VariableType type, std::string_view name,
                                        std::span<const std::uint8_t> value);

    std::span<const std::uint8_t> build(std::string_view name, std::int32_t value);

private:
    bool put(std::uint8_t byte);
    bool putEscaped(std::span<const std::uint8_t> bytes);

    std::array<std::uint8_t, kFrameBufferBytes> buffer_{};
    std::size_t length_ = 0;
};

}  // namespace tvk::comm
