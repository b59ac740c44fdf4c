// Reads numbers out of bytes that nobody vouches for. A read that would leave the bytes gives 0, moves
// nothing and is remembered.
//
// Positions are 64 bits wide, so that a 32-bit size taken from a file can be added to one without wrapping.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

class ByteCursor {
public:
    // The bytes outlive the cursor.
    ByteCursor(const unsigned char* bytes, std::uint64_t size) : bytes_(bytes), size_(size) {}

    std::uint64_t position() const { return position_; }
    std::uint64_t remaining() const { return size_ - position_; }
    bool isOverrun() const { return overrun_; }

    // False when the bytes end before the position.
    bool seek(std::uint64_t position) {
        if (position > size_) {
            overrun_ = true;
            return false;
        }
        position_ = position;
        return true;
    }

    std::uint16_t readU16Le() { return static_cast<std::uint16_t>(readLe(2)); }
    std::uint32_t readU32Le() { return static_cast<std::uint32_t>(readLe(4)); }
    std::uint16_t readU16Be() { return static_cast<std::uint16_t>(readBe(2)); }
    std::uint32_t readU32Be() { return static_cast<std::uint32_t>(readBe(4)); }
    std::uint64_t readU64Be() { return readBe(8); }

    // Four characters that name a chunk or a type.
    std::string_view readId() {
        const unsigned char* const id = take(4);
        return id ? std::string_view(reinterpret_cast<const char*>(id), 4) : std::string_view();
    }

    // The next count bytes, or null.
    const unsigned char* take(std::uint64_t count) {
        if (count > remaining()) {
            overrun_ = true;
            return nullptr;
        }
        const unsigned char* const here = bytes_ + position_;
        position_ += count;
        return here;
    }

private:
    std::uint64_t readLe(unsigned count) {
        const unsigned char* const bytes = take(count);
        std::uint64_t value = 0;
        for (unsigned i = count; bytes && i-- > 0;)
            value = value << 8 | bytes[i];
        return value;
    }

    std::uint64_t readBe(unsigned count) {
        const unsigned char* const bytes = take(count);
        std::uint64_t value = 0;
        for (unsigned i = 0; bytes && i < count; ++i)
            value = value << 8 | bytes[i];
        return value;
    }

    const unsigned char* bytes_;
    std::uint64_t size_;
    std::uint64_t position_ = 0;
    bool overrun_ = false;
};
