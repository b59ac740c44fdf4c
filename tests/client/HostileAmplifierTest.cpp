// An amplifier that sends whatever it likes: the program ends in time, with an answer or without, and a good
// answer behind the noise is still taken.
#include <random>

#include "ToolFixture.h"

namespace {

using tvk::Bytes;

class HostileAmplifierTest : public ToolFixture {
protected:
    static constexpr const char* kAnswer = "currentAmplifierResponse { dummy: true currentAmpEnum: 1 }";

    // Noise, then the answer.
    Result askThrough(const std::function<void()>& noise) {
        amplifier.answer = [this, &noise](const TarvekMessage& request) {
            if (request.has_getcurrentamplifier()) noise();
            return FakeAmplifier::Messages{messageOf(kAnswer)};
        };
        return run({"amp"});
    }
    void expectAnswered(const Result& result) {
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_EQ(result.out, "amplifier 1 (Corvin)\n");
        EXPECT_EQ(result.errors, "");
    }
};

}  // namespace

TEST_F(HostileAmplifierTest, RandomReports) {
    std::mt19937 random(1);
    expectAnswered(askThrough([this, &random] {
        for (int i = 0; i < 500; ++i) {
            Bytes report(random() % 70 + 1);
            for (std::uint8_t& byte : report)
                byte = static_cast<std::uint8_t>(random());
            amplifier.sayBytes(report);
        }
        // The end of a message that may be under way.
        amplifier.sayFrame({'5', 0, 0, 0});
    }));
}

TEST_F(HostileAmplifierTest, AnEndlessMessage) {
    expectAnswered(askThrough([this] {
        Bytes frame(63, 'x');
        frame[0] = '3';
        frame[1] = 0;
        frame[2] = 60;
        amplifier.sayFrame(frame);
        frame[0] = '4';
        for (int i = 0; i < 1000; ++i)
            amplifier.sayFrame(frame);
        amplifier.sayFrame({'5', 0, 0, 0});
    }));
}

TEST_F(HostileAmplifierTest, FramesWhosePayloadLies) {
    expectAnswered(askThrough([this] {
        for (const std::uint8_t high : {0, 1, 255})
            for (const std::uint8_t low : {0, 61, 255}) {
                if (high == 0 && low == 0) continue;
                Bytes frame(63, 'x');
                frame[0] = '5';
                frame[1] = high;
                frame[2] = low;
                amplifier.sayFrame(frame);
            }
    }));
}

TEST_F(HostileAmplifierTest, MessagesThatDoNotParse) {
    expectAnswered(askThrough([this] {
        for (const Bytes& bytes :
             {Bytes{0x9a, 0x01, 0xff, 0xff, 0xff, 0xff, 0x07}, Bytes{0x0b, 0x0b, 0x0b, 0x0b},
              Bytes{0x08, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff}}) {
            Bytes frame = {'5', 0, static_cast<std::uint8_t>(bytes.size())};
            frame.insert(frame.end(), bytes.begin(), bytes.end());
            amplifier.sayFrame(frame);
        }
    }));
}

TEST_F(HostileAmplifierTest, ReportsWithAnotherNumber) {
    expectAnswered(askThrough([this] {
        Bytes report(64, 0);
        report[0] = 1;
        report[1] = '3';
        report[3] = 60;
        amplifier.sayBytes(report);
    }));
}

TEST_F(HostileAmplifierTest, RequestsInsteadOfAnswers) {
    expectAnswered(askThrough([this] {
        for (const char* text :
             {"getCurrentAmplifier { dummy: true }", "connectionMessage { connectionRequest {} }",
              "connectionMessage { connectionHeartbeat {} }", "connectionMessage {}", ""})
            amplifier.say(messageOf(text));
    }));
}

TEST_F(HostileAmplifierTest, AnswersOfTheWrongKindDoNotEndAVerbEarlyOrLate) {
    amplifier.answer = [](const TarvekMessage&) {
        return FakeAmplifier::Messages(200, messageOf("userIRListResponse { dummy: true }"));
    };
    EXPECT_EQ(run({"amp"}).status, 3);
    EXPECT_GE(amplifier.now(), std::chrono::seconds(5));
    EXPECT_LT(amplifier.now(), std::chrono::milliseconds(5500));
}

TEST_F(HostileAmplifierTest, AConnectionThatEndsWhileAnAnswerIsWaitedFor) {
    amplifier.answer = [](const TarvekMessage&) {
        return FakeAmplifier::Messages{messageOf("connectionMessage { connectionError { errorEnum: 2 } }")};
    };
    const Result result = run({"amp"});
    EXPECT_EQ(result.status, 3);
    EXPECT_EQ(
        result.errors,
        "tarvek-client: The amplifier has ended the connection, and what was not saved is undone; connect "
        "again.\n");
}

TEST_F(HostileAmplifierTest, NumbersThatNobodyKnows) {
    onRequest("getCurrentAmplifier {}", {"currentAmplifierResponse { currentAmpEnum: 4294967295 }"});
    EXPECT_EQ(run({"amp"}).out, "amplifier 4294967295 (unknown)\n");
    onRequest("cabsimIRListRequest {}",
              {"cabsimIRListResponse { record { cabsimId: 4294967295 hpf: nan lpf: inf level: -inf } }"});
    EXPECT_EQ(run({"cab", "list"}).out,
              "slot 4294967295  user    \"\"  hpf nan Hz  lpf inf Hz  level -inf dB\n");
    EXPECT_EQ(
        run({"cab", "list", "--json"}).out,
        "{\"cabsimIRListResponse\":{\"dummy\":false,\"record\":[{\"cabsimId\":4294967295,\"isFactory\":false,"
        "\"irName\":\"\",\"isDirty\":false,\"hpf\":\"NaN\",\"lpf\":\"Infinity\",\"level\":\"-Infinity\"}]}}"
        "\n");
}
