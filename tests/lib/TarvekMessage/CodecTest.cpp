#include <gtest/gtest.h>
#include <string>

#include "TarvekMessage.pb.h"
#include "TarvekMessage/MessageText.h"
#include "TarvekMessage/PbDecoder.h"
#include "TarvekMessage/PbEncoder.h"
#include "support/LogRecorder.h"

using tvk::Bytes;

namespace {

class CodecTest : public testing::Test {
protected:
    // A message whose encoded form has that many bytes, at least 200.
    static TarvekMessage messageOfSize(std::size_t size) {
        TarvekMessage message;
        message.mutable_adduserir()->set_name("n");
        std::string& data = *message.mutable_adduserir()->mutable_irdata();
        data.assign(size - 20, 'd');
        data.append(size - message.ByteSizeLong(), 'd');
        return message;
    }

    LogRecorder log;
    tvk::PbEncoder<TarvekMessage> encoder{32768};
    tvk::PbDecoder<TarvekMessage> decoder{32768};
};

}  // namespace

// Worked by hand from the wire format: tag (number << 3 | kind), then a varint, a length and bytes, or four
// bytes.
TEST_F(CodecTest, MessagesAreOnTheWireAsTheFormatHasThem) {
    TarvekMessage heartbeat;
    heartbeat.set_ignore_this_padding(true);
    heartbeat.mutable_connectionmessage()->mutable_connectionheartbeat()->set_dummy(true);
    EXPECT_EQ(*encoder.encode(&heartbeat), (Bytes{0x08, 0x01, 0x22, 0x04, 0x22, 0x02, 0x08, 0x01}));

    TarvekMessage hpf;
    hpf.set_ignore_this_padding(true);
    hpf.set_batchstatus(3);
    hpf.mutable_setcabsimhpf()->set_cabsimenum(2);
    hpf.mutable_setcabsimhpf()->set_value(20.0f);
    EXPECT_EQ(*encoder.encode(&hpf),
              (Bytes{0x08, 0x01, 0x10, 0x03, 0xDA, 0x01, 0x07, 0x08, 0x02, 0x15, 0x00, 0x00, 0xA0, 0x41}));

    TarvekMessage added;
    added.mutable_useriradded()->set_name("Room");
    EXPECT_EQ(*encoder.encode(&added), (Bytes{0xA2, 0x01, 0x06, 0x0A, 0x04, 'R', 'o', 'o', 'm'}));
}

TEST_F(CodecTest, WhatIsEncodedDecodesToTheSame) {
    TarvekMessage message;
    message.set_batchstatus(-7);
    message.mutable_moveuserir()->set_oldslot(50);
    message.mutable_moveuserir()->set_newslot(4000000000u);
    const auto bytes = encoder.encode(&message);
    const auto decoded = decoder.decode(bytes.get());
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->batchstatus(), -7);
    EXPECT_EQ(decoded->moveuserir().oldslot(), 50u);
    EXPECT_EQ(decoded->moveuserir().newslot(), 4000000000u);
}

TEST_F(CodecTest, AMessageWithoutAnythingEncodesToNoBytes) {
    const TarvekMessage nothing;
    const auto bytes = encoder.encode(&nothing);
    ASSERT_TRUE(bytes);
    EXPECT_TRUE(bytes->empty());
}

TEST_F(CodecTest, AnUnsetTypeParses) {
    const Bytes bytes{0x08, 0x01};
    const auto message = decoder.decode(&bytes);
    ASSERT_TRUE(message);
    EXPECT_EQ(message->type_case(), TarvekMessage::TYPE_NOT_SET);
}

TEST_F(CodecTest, AFieldOfTheFutureParses) {
    const Bytes unknown{0xDA, 0x0C, 0x02, 0x01, 0x02};  // number 203
    const auto message = decoder.decode(&unknown);
    ASSERT_TRUE(message);
    EXPECT_EQ(message->type_case(), TarvekMessage::TYPE_NOT_SET);
}

TEST_F(CodecTest, TheLargestMessagePassesBothWaysAndOneByteMoreDoesNot) {
    const TarvekMessage largest = messageOfSize(32768);
    const auto bytes = encoder.encode(&largest);
    ASSERT_TRUE(bytes);
    EXPECT_EQ(bytes->size(), 32768u);
    EXPECT_TRUE(decoder.decode(bytes.get()));

    const TarvekMessage tooLarge = messageOfSize(32769);
    EXPECT_EQ(encoder.encode(&tooLarge), nullptr);
    EXPECT_TRUE(log.has("Warn Tried to encode a messagePtr that would be too large."));
    const Bytes tooMany(32769, 0);
    EXPECT_EQ(decoder.decode(&tooMany), nullptr);
    EXPECT_TRUE(log.has("Error Tried to decode too large of a message.\r\n"));
}

TEST_F(CodecTest, NullIsRefused) {
    EXPECT_EQ(encoder.encode(nullptr), nullptr);
    EXPECT_TRUE(log.has("Warn Tried to encode a nullptr messagePtr. Returning nullptr. \r\n"));
    EXPECT_EQ(decoder.decode(nullptr), nullptr);
    EXPECT_TRUE(log.has("Warn Tried to decode a nullptr message. Returning nullptr.\r\n"));
}

TEST_F(CodecTest, WhatDoesNotParseIsRefusedAndTheLibrarySaysNothing) {
    testing::internal::CaptureStderr();
    const Bytes cut{0x22, 0x04, 0x22};
    EXPECT_EQ(decoder.decode(&cut), nullptr);
    const Bytes noUtf8{0xA2, 0x01, 0x03, 0x0A, 0x01, 0xFF};
    EXPECT_EQ(decoder.decode(&noUtf8), nullptr);
    EXPECT_EQ(log.count("Warn Failed protobuf parse."), 2);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(MessageText, IsOneLineOfTheTextForm) {
    TarvekMessage message;
    message.set_ignore_this_padding(true);
    message.mutable_removeuserir()->set_slot(3);
    EXPECT_EQ(tvk::messageText(message), "IGNORE_THIS_PADDING: true removeUserIR { slot: 3 }");
    EXPECT_EQ(tvk::messageText(TarvekMessage()), "");
}

TEST(MessageText, BytesOfAStrangerStandAsEscapes) {
    TarvekMessage message;
    message.mutable_adduserir()->set_name("a\nb\x1B\"%s");
    EXPECT_EQ(tvk::messageText(message), R"(addUserIR { name: "a\nb\033\"%s" })");
}

TEST(MessageText, IsCutTo150Characters) {
    TarvekMessage message;
    message.mutable_adduserir()->set_irdata(std::string(32000, 'd'));
    const std::string head = "addUserIR { irData: \"";
    EXPECT_EQ(tvk::messageText(message), head + std::string(150 - head.size(), 'd'));
    message.mutable_adduserir()->set_irdata(std::string(126, 'd'));
    EXPECT_EQ(tvk::messageText(message), head + std::string(126, 'd') + "\" }");
}
