// Sound files byte by byte, good ones and broken ones, for tests.
#pragma once

#include <bit>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace soundfile {

using Bytes = std::string;

// The low bytes of a value.
inline Bytes le(std::uint64_t value, int count) {
    Bytes bytes;
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>(value >> (8 * i) & 0xFF);
    return bytes;
}

inline Bytes be(std::uint64_t value, int count) {
    const Bytes bytes = le(value, count);
    return {bytes.rbegin(), bytes.rend()};
}

// A RIFF chunk with its pad byte; size, when given, is what the chunk claims.
inline Bytes chunkLe(const Bytes& id, const Bytes& body, std::int64_t size = -1) {
    const std::uint64_t claimed = size < 0 ? body.size() : static_cast<std::uint64_t>(size);
    return id + le(claimed, 4) + body + (body.size() % 2 ? Bytes(1, '\0') : Bytes());
}

inline Bytes chunkBe(const Bytes& id, const Bytes& body, std::int64_t size = -1) {
    const std::uint64_t claimed = size < 0 ? body.size() : static_cast<std::uint64_t>(size);
    return id + be(claimed, 4) + body + (body.size() % 2 ? Bytes(1, '\0') : Bytes());
}

// The fields of a WAV header; blockAlign and byteRate follow from the others unless set.
struct Wav {
    unsigned tag = 1;
    unsigned channels = 1;
    unsigned rateHz = 44100;
    unsigned bits = 16;
    int blockAlign = -1;
    std::int64_t byteRate = -1;
    unsigned subFormat = 1;  // of an extensible header
    Bytes data{};

    Bytes format() const {
        const unsigned align =
            blockAlign < 0 ? channels * ((bits + 7) / 8) : static_cast<unsigned>(blockAlign);
        const std::uint64_t rate =
            byteRate < 0 ? std::uint64_t{rateHz} * align : static_cast<std::uint64_t>(byteRate);
        Bytes body = le(tag, 2) + le(channels, 2) + le(rateHz, 4) + le(rate, 4) + le(align, 2) + le(bits, 2);
        if (tag == 0xFFFE) {
            const Bytes guidTail("\x00\x00\x00\x00\x10\x00\x80\x00\x00\xAA\x00\x38\x9B\x71", 14);
            body += le(22, 2) + le(bits, 2) + le(0, 4) + le(subFormat, 2) + guidTail;
        }
        return body;
    }
    Bytes bytes() const { return riff(chunkLe("fmt ", format()) + chunkLe("data", data)); }

    static Bytes riff(const Bytes& chunks) { return "RIFF" + le(4 + chunks.size(), 4) + "WAVE" + chunks; }
};

// IEEE extended precision of a whole number above 0.
inline Bytes extended(std::uint64_t value) {
    const int shift = std::countl_zero(value);
    return be(static_cast<std::uint64_t>(16383 + 63 - shift), 2) + be(value << shift, 8);
}

// The fields of an AIFF or, with an encoding, an AIFC header; frames follows from data unless set.
struct Aiff {
    unsigned channels = 1;
    unsigned rateHz = 44100;
    unsigned bits = 16;
    std::int64_t frames = -1;
    Bytes encoding{};
    unsigned offset = 0;  // bytes between the sound chunk's head and the samples
    Bytes data{};

    Bytes common() const {
        const std::uint64_t frameBytes = channels * ((bits + 7) / 8);
        const std::uint64_t count =
            frames < 0 ? data.size() / frameBytes : static_cast<std::uint64_t>(frames);
        Bytes body = be(channels, 2) + be(count, 4) + be(bits, 2) + extended(rateHz);
        if (!encoding.empty()) body += encoding + Bytes(2, '\0');
        return body;
    }
    Bytes sound() const { return be(offset, 4) + be(0, 4) + Bytes(offset, 'o') + data; }
    Bytes bytes() const { return form(chunkBe("COMM", common()) + chunkBe("SSND", sound())); }
    Bytes form(const Bytes& chunks) const {
        return "FORM" + be(4 + chunks.size(), 4) + (encoding.empty() ? "AIFF" : "AIFC") + chunks;
    }
};

inline void write(const std::string& path, const Bytes& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace soundfile
