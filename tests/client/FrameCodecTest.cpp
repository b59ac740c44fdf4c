// The client's codec and the amplifier's against vectors that neither of them made.
#include <algorithm>
#include <google/protobuf/util/json_util.h>
#include <gtest/gtest.h>

#include "TarvekMessage.pb.h"
#include "TarvekMessage/PbDecoder.h"
#include "TarvekMessage/PbEncoder.h"
#include "client/FrameCodec.h"
#include "client/MessageCodec.h"
#include "core/Messaging/MessageComposer.h"
#include "core/Messaging/MessageFramer.h"
#include "support/ClientVectors.h"
#include "support/LogRecorder.h"

using namespace tvk::client;

namespace {

using List = std::vector<tvk::Bytes>;

const ClientVectors& vectors() {
    static const ClientVectors loaded(TARVEK_CLIENT_VECTORS);
    return loaded;
}

TarvekMessage messageOfJson(const std::string& json) {
    TarvekMessage message;
    const auto status = google::protobuf::util::JsonStringToMessage(json, &message);
    EXPECT_TRUE(status.ok()) << status.message() << " in " << json.substr(0, 200);
    return message;
}

Frame padded(const tvk::Bytes& frame) {
    Frame result{};
    EXPECT_LE(frame.size(), result.size());
    std::ranges::copy(frame, result.begin());
    return result;
}

std::vector<Frame> padded(const List& frames) {
    std::vector<Frame> result;
    for (const tvk::Bytes& frame : frames)
        result.push_back(padded(frame));
    return result;
}

List assembled(const List& frames) {
    FrameAssembler assembler;
    List messages;
    for (const tvk::Bytes& frame : frames)
        if (auto message = assembler.add(frame)) messages.push_back(std::move(*message));
    return messages;
}

// The amplifier's.
class Amplifier {
public:
    List cut(const tvk::Bytes& message) const {
        List frames;
        tvk::Bytes frame;
        for (std::size_t i = 0; !(frame = framer_.getFrame(message, i)).empty(); ++i)
            frames.push_back(frame);
        return frames;
    }
    List compose(const List& frames) {
        List messages;
        for (const tvk::Bytes& frame : frames)
            if (composer_.addFrame(frame)) messages.push_back(*composer_.popMessage());
        return messages;
    }

private:
    LogRecorder quiet_;
    tvk::MessageFramer framer_{63, 32768, tvk::CompositionMode::Framed};
    tvk::MessageComposer composer_{63, 32768, tvk::CompositionMode::Framed};
};

}  // namespace

TEST(FrameVectors, BothEncodersGiveTheBytesOfEveryMessage) {
    tvk::PbEncoder<TarvekMessage> amplifier(32768);
    ASSERT_GE(vectors().messages.size(), 60u);
    for (const auto& vector : vectors().messages) {
        const TarvekMessage message = messageOfJson(vector.json);
        EXPECT_EQ(encode(message), vector.bytes) << vector.about;
        const tvk::OwnedBytes bytes = amplifier.encode(&message);
        ASSERT_TRUE(bytes) << vector.about;
        EXPECT_EQ(*bytes, vector.bytes) << vector.about;
    }
}

TEST(FrameVectors, BothDecodersGiveEveryMessageOfItsBytes) {
    tvk::PbDecoder<TarvekMessage> amplifier(32768);
    for (const auto& vector : vectors().messages) {
        const TarvekMessage message = messageOfJson(vector.json);
        TarvekMessage decoded;
        EXPECT_TRUE(decode(vector.bytes, decoded)) << vector.about;
        EXPECT_EQ(decoded.SerializeAsString(), message.SerializeAsString()) << vector.about;
        const auto received = amplifier.decode(&vector.bytes);
        ASSERT_TRUE(received) << vector.about;
        EXPECT_EQ(received->SerializeAsString(), message.SerializeAsString()) << vector.about;
    }
}

TEST(FrameVectors, BothCutEveryMessageAlike) {
    const Amplifier amplifier;
    for (const auto& vector : vectors().messages) {
        EXPECT_EQ(framesOf(vector.bytes), padded(vector.frames)) << vector.about;
        EXPECT_EQ(amplifier.cut(vector.bytes), vector.frames) << vector.about;
    }
    for (const auto& vector : vectors().cuts) {
        EXPECT_EQ(framesOf(vector.bytes), padded(vector.frames)) << vector.bytes.size();
        EXPECT_EQ(amplifier.cut(vector.bytes), vector.frames) << vector.bytes.size();
    }
}

TEST(FrameVectors, NeitherCutsWhatIsEmptyOrTooLong) {
    const Amplifier amplifier;
    for (const std::size_t size : vectors().uncut) {
        EXPECT_TRUE(framesOf(tvk::Bytes(size, 1)).empty()) << size;
        EXPECT_TRUE(amplifier.cut(tvk::Bytes(size, 1)).empty()) << size;
    }
}

TEST(FrameVectors, BothPutTheFramesOfEveryMessageTogether) {
    Amplifier amplifier;
    for (const auto& vector : vectors().messages) {
        EXPECT_EQ(assembled(vector.frames), List{vector.bytes}) << vector.about;
        EXPECT_EQ(amplifier.compose(vector.frames), List{vector.bytes}) << vector.about;
    }
}

TEST(FrameVectors, BothTakeTheSameOutOfABrokenStream) {
    for (const auto& vector : vectors().streams) {
        EXPECT_EQ(assembled(vector.frames), vector.messages) << vector.about;
        EXPECT_EQ(Amplifier().compose(vector.frames), vector.messages) << vector.about;
    }
}

TEST(FrameVectors, NeitherTakesBytesThatAreNoMessage) {
    const LogRecorder quiet;
    tvk::PbDecoder<TarvekMessage> amplifier(32768);
    for (const auto& vector : vectors().bad) {
        TarvekMessage message;
        EXPECT_FALSE(decode(vector.bytes, message)) << vector.about;
        EXPECT_FALSE(amplifier.decode(&vector.bytes)) << vector.about;
    }
}

TEST(FrameVectors, ReportsCarryFramesAsTheyShould) {
    for (const auto& vector : vectors().reports) {
        const Frame frame = padded(vector.frame);
        const Report toDevice = reportOf(frame);
        EXPECT_TRUE(std::ranges::equal(toDevice, vector.toDevice));
        Report toHost{};
        ASSERT_EQ(vector.toHost.size(), toHost.size());
        std::ranges::copy(vector.toHost, toHost.begin());
        EXPECT_EQ(frameOf(toHost), frame);
        toHost[0] = 1;
        EXPECT_EQ(frameOf(toHost), std::nullopt);
    }
}

TEST(FrameCodec, DroppedFramesAreCounted) {
    FrameAssembler assembler;
    assembler.add(Bytes{'5', 0, 1, 'x'});
    EXPECT_EQ(assembler.getDropped(), 0u);
    assembler.add(Bytes{'4', 0, 1, 'x'});
    assembler.add(Bytes{'x'});
    EXPECT_EQ(assembler.getDropped(), 2u);
}

TEST(MessageCodec, AMessageOverTheLimitIsNotEncodedAndNotDecoded) {
    TarvekMessage message;
    EXPECT_EQ(encode(message), std::nullopt);
    message.mutable_adduserir()->set_irdata(std::string(32768, 'x'));
    EXPECT_EQ(encode(message), std::nullopt);
    const std::string bytes = message.SerializeAsString();
    EXPECT_FALSE(decode(Bytes(bytes.begin(), bytes.end()), message));
}
