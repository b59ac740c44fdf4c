// Takes bytes as frames from a desktop client, and what is put together from them as messages.
//
// The input is a run of frames: one byte that is the number of the bytes that follow, 0 to 79, and these.
//
// Laws: a message that is put together has 1 to 32768 bytes; what is decoded encodes, and the encoded form
// decodes to the same; its text for the log is one short printable line; the second of two good messages that
// follow comes out whole, and after it nothing is left; so does one that follows a pause in a stream of
// bytes.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

#include "Require.h"
#include "TarvekMessage.pb.h"
#include "TarvekMessage/MessageText.h"
#include "TarvekMessage/PbDecoder.h"
#include "TarvekMessage/PbEncoder.h"
#include "core/Messaging/MessageComposer.h"
#include "core/Messaging/MessageFramer.h"

using tvk::Bytes;
using tvk::CompositionMode;

namespace {

constexpr std::size_t kFrameSize = 63;
constexpr std::size_t kMessageSize = 32768;
constexpr std::size_t kLongestFrame = 80;

struct Codec {
    tvk::PbEncoder<TarvekMessage> encoder{kMessageSize};
    tvk::PbDecoder<TarvekMessage> decoder{kMessageSize};
    tvk::MessageFramer framer{kFrameSize, kMessageSize, CompositionMode::Framed};
};

void requireGoodText(const TarvekMessage& message) {
    const std::string text = tvk::messageText(message);
    REQUIRE(text.size() <= 150);
    REQUIRE(std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; }));
}

void decode(Codec& codec, const Bytes& bytes) {
    const std::unique_ptr<TarvekMessage> message = codec.decoder.decode(&bytes);
    if (!message) return;
    requireGoodText(*message);
    const tvk::OwnedBytes encoded = codec.encoder.encode(message.get());
    if (!encoded) return;  // negative numbers can come in fewer bytes than they are written in
    const std::unique_ptr<TarvekMessage> again = codec.decoder.decode(encoded.get());
    REQUIRE(again && *codec.encoder.encode(again.get()) == *encoded);
}

void takeMessages(Codec& codec, tvk::MessageComposer& composer) {
    while (composer.messageWaiting()) {
        const tvk::OwnedBytes bytes = composer.popMessage();
        REQUIRE(bytes && !bytes->empty() && bytes->size() <= kMessageSize);
        decode(codec, *bytes);
    }
    REQUIRE(!composer.popMessage());
}

// Several frames long.
Bytes goodMessage() {
    Bytes bytes(200);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(i);
    return bytes;
}

void requireNextGood(Codec& codec, tvk::MessageComposer& composer) {
    const Bytes good = goodMessage();
    bool isFinished = false;
    for (int copy = 0; copy < 2; ++copy) {
        takeMessages(codec, composer);
        Bytes frame;
        for (std::size_t i = 0; !(frame = codec.framer.getFrame(good, i)).empty(); ++i)
            isFinished = composer.addFrame(frame);
    }
    REQUIRE(isFinished);
    REQUIRE(*composer.popMessage() == good);
    REQUIRE(!composer.messageWaiting());
}

void requireNextGoodOfStream(Codec& codec, tvk::MessageComposer& composer) {
    composer.addFrame(Bytes(kFrameSize, 0));
    takeMessages(codec, composer);
    const Bytes good(17, 0x35);
    REQUIRE(composer.addFrame(codec.framer.getFrame(good, 0)));
    REQUIRE(*composer.popMessage() == good);
    REQUIRE(!composer.messageWaiting());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QuietLog quiet;
    static Codec codec;
    static tvk::MessageComposer framed(kFrameSize, kMessageSize, CompositionMode::Framed);
    static tvk::MessageComposer streaming(kFrameSize, kMessageSize, CompositionMode::Streaming);
    for (std::size_t i = 0; i < size;) {
        const std::size_t length = std::min<std::size_t>(data[i] % kLongestFrame, size - i - 1);
        const Bytes frame(data + i + 1, data + i + 1 + length);
        i += 1 + length;
        framed.addFrame(frame);
        streaming.addFrame(frame);
        takeMessages(codec, framed);
        takeMessages(codec, streaming);
    }
    decode(codec, Bytes(data, data + size));
    requireNextGood(codec, framed);
    requireNextGoodOfStream(codec, streaming);
    return 0;
}
