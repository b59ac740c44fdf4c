// Requests and replies as they lie on the wire, written down by hand from the field numbers.
#include "Conversation.h"

namespace {

// "08 01": two hexadecimal digits a byte.
tvk::Bytes bytesOf(const std::string& hex) {
    tvk::Bytes bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 3)
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

class ReplyBytes : public Conversation {
protected:
    ReplyBytes() { connect(); }

    // As many replies as are expected, and then that of a connection request, which is refused.
    void expect(const std::string& request, const std::vector<std::string>& replies) {
        SCOPED_TRACE(request);
        amplifier.link.sendBytes(bytesOf(request));
        amplifier.link.sendBytes(bytesOf("22 04 0a 02 08 01"));
        std::vector<tvk::Bytes> expected;
        for (const std::string& reply : replies)
            expected.push_back(bytesOf(reply));
        expected.push_back(bytesOf("08 01 22 04 1a 02 08 01"));
        std::vector<tvk::Bytes> found;
        while (found.empty() || found.back() != expected.back())
            for (tvk::Bytes& reply : amplifier.link.awaitReplyBytes())
                found.push_back(std::move(reply));
        EXPECT_EQ(found, expected);
    }

    // The list of three slots without a response, of which the first is as told.
    static std::string slots(const std::string& firstRecord) {
        const std::string none = "10 01 1a 04 4e 6f 6e 65 2d 00 00 a0 41 35 00 40 9c 46 3d 00 00 a0 c0";
        const std::size_t firstBytes = bytesOf(firstRecord).size();
        const std::size_t bytes = 2 + 2 + firstBytes + 2 * (2 + 25);
        return "08 01 72 " + hex(bytes) + " 08 01 12 " + hex(firstBytes) + " " + firstRecord +
               " 12 19 08 01 " + none + " 12 19 08 02 " + none;
    }
    static std::string hex(std::size_t byte) {
        const char* const digits = "0123456789abcdef";
        return {digits[byte / 16], digits[byte % 16]};
    }
};

const char* const kEmptyFirst = "10 01 1a 04 4e 6f 6e 65 2d 00 00 a0 41 35 00 40 9c 46 3d 00 00 a0 c0";

}  // namespace

TEST_F(ReplyBytes, OfTheSelection) {
    expect("3a 02 08 02", {"08 01 42 02 08 02", slots(kEmptyFirst)});
    expect("4a 02 08 01", {"08 01 42 02 08 02"});
    expect("3a 02 08 03", {"08 01 52 02 08 01"});
}

TEST_F(ReplyBytes, OfAHighPassOf5HzWhichIs20Hz) {
    expect("da 01 05 15 00 00 a0 40",
           {"08 01 da 01 05 15 00 00 a0 41",
            slots("10 01 1a 04 4e 6f 6e 65 20 01 2d 00 00 a0 41 35 00 40 9c 46 3d 00 00 a0 c0")});
}

TEST_F(ReplyBytes, OfALevelOf3DbWhichIs0Db) {
    expect("ea 01 05 15 00 00 40 40",
           {"08 01 ea 01 00", slots("10 01 1a 04 4e 6f 6e 65 20 01 2d 00 00 a0 41 35 00 40 9c 46")});
}

TEST_F(ReplyBytes, OfTheSettings) {
    expect("82 02 02 08 02", {"08 01 82 02 02 08 02"});
    expect("9a 02 02 08 01", {"08 01 82 02 02 08 02"});
    expect("82 02 06 08 80 80 80 80 08", {"08 01 92 02 02 08 01"});
    expect("8a 02 02 08 01", {"08 01 8a 02 02 08 01"});
    expect("a2 02 02 08 01", {"08 01 8a 02 02 08 01"});
}

TEST_F(ReplyBytes, OfTheAmplifier) {
    amplifier.become(1);
    expect("aa 02 02 08 01", {"08 01 b2 02 04 08 01 10 01"});
    expect("ba 02 02 08 01", {"08 01 c2 02 04 08 01 10 01"});
}

TEST_F(ReplyBytes, OfTheResponses) {
    expect("9a 01 09 0a 04 52 6f 6f 6d 12 01 78", {"08 01 a2 01 06 0a 04 52 6f 6f 6d"});
    expect("8a 01 02 08 01", {"08 01 92 01 0c 08 01 12 08 0a 04 52 6f 6f 6d 10 01"});
    expect("c2 01 02 08 09", {"08 01 aa 01 02 08 03"});
    expect("9a 01 07 0a 02 2e 2e 12 01 78", {"08 01 b2 01 04 0a 02 2e 2e"});
}

TEST_F(ReplyBytes, OfABatchInItsOrder) {
    expect("10 01 82 02 02 08 05", {});
    expect("10 03 82 02 02 08 06", {"08 01 82 02 02 08 05", "08 01 82 02 02 08 06"});
}
