// The chunks of a RIFF or IFF file: an id of four characters, a 32-bit size, the body, and a pad byte behind
// a body of odd length. They begin at byte 12, behind the container's own head.
#pragma once

#include <bit>
#include <cstdint>
#include <optional>
#include <string_view>

#include "ByteCursor.h"

namespace audiofile {

struct Chunk {
    std::uint64_t begin;  // of the body
    std::uint64_t size;   // as the file says; the file may end before
};

// The first chunk of that id whose head lies within the file.
inline std::optional<Chunk> findChunk(ByteCursor cursor, std::string_view id, std::endian order) {
    constexpr std::uint64_t kFirstChunk = 12;
    constexpr std::uint64_t kHeadBytes = 8;
    if (!cursor.seek(kFirstChunk)) return std::nullopt;
    while (cursor.remaining() >= kHeadBytes) {
        const bool isWanted = cursor.readId() == id;
        const std::uint64_t size = order == std::endian::little ? cursor.readU32Le() : cursor.readU32Be();
        if (isWanted) return Chunk{cursor.position(), size};
        if (!cursor.seek(cursor.position() + size + size % 2)) return std::nullopt;
    }
    return std::nullopt;
}

}  // namespace audiofile
