// The session against an amplifier that does as it is told, in virtual time.
#include <gtest/gtest.h>

#include "FakeAmplifier.h"
#include "MessageText.h"
#include "client/ClientError.h"
#include "client/Requests.h"
#include "client/Session.h"

using namespace tvk::client;
using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

using Messages = FakeAmplifier::Messages;

class SessionTest : public testing::Test {
protected:
    // Times at which heartbeats came, since the connection.
    std::vector<milliseconds> heartbeats() const {
        std::vector<milliseconds> times;
        for (std::size_t i = 0; i < amplifier.received.size(); ++i)
            if (amplifier.received[i].connectionmessage().has_connectionheartbeat())
                times.push_back(std::chrono::duration_cast<milliseconds>(amplifier.receivedAt[i]));
        return times;
    }

    FakeAmplifier amplifier;
    FakeClock clock{amplifier};
    Session session{amplifier.link(), clock};
    const std::atomic<bool> goOn{false};
};

Failure failureOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const ClientError& error) {
        return error.getFailure();
    }
    return Failure{0};
}

}  // namespace

TEST_F(SessionTest, ConnectsAndAsksWhichAmplifierItIs) {
    amplifier.answer = [](const TarvekMessage& request) {
        return request.has_getcurrentamplifier()
                   ? Messages{messageOf("currentAmplifierResponse { dummy: true currentAmpEnum: 2 }")}
                   : Messages();
    };
    const Exchange greeting = session.connect();
    EXPECT_EQ(greeting.state, Exchange::State::Done);
    EXPECT_EQ(greeting.replies.back().connectionmessage().connectionresponse().clientid(), 1);
    const Exchange exchange = session.ask(requests::currentAmplifier());
    EXPECT_EQ(exchange.state, Exchange::State::Done);
    ASSERT_EQ(exchange.replies.size(), 1u);
    EXPECT_EQ(exchange.replies[0].currentamplifierresponse().currentampenum(), 2u);
}

TEST_F(SessionTest, AnOpenConnectionIsAsGood) {
    amplifier.isOpen = true;
    const Exchange greeting = session.connect();
    EXPECT_TRUE(session.isConnected());
    EXPECT_EQ(greeting.replies.back().connectionmessage().connectionerror().errorenum(), 1);
}

TEST_F(SessionTest, AnUnfinishedMessageOfAnotherProgramTakesOneRequestOnly) {
    amplifier.leaveUnfinished();
    session.connect();
    EXPECT_TRUE(session.isConnected());
    EXPECT_GE(amplifier.now(), seconds(1));
    EXPECT_LE(amplifier.now(), milliseconds(1010));
}

TEST_F(SessionTest, WithoutAnAmplifierConnectingEndsAfterFiveSeconds) {
    amplifier.unplug();
    EXPECT_EQ(failureOf([this] { session.connect(); }), Failure::NoLink);
    EXPECT_EQ(amplifier.now(), seconds(5));
    EXPECT_FALSE(session.isConnected());
}

TEST_F(SessionTest, AHeartbeatComesEverySecondOfSilence) {
    session.connect();
    const auto start = amplifier.now();
    session.stay(seconds(30), goOn);
    EXPECT_TRUE(amplifier.isOpen);
    const std::vector<milliseconds> times = heartbeats();
    ASSERT_GE(times.size(), 29u);
    for (std::size_t i = 1; i < times.size(); ++i)
        EXPECT_LE(times[i] - times[i - 1], milliseconds(1010));
    EXPECT_EQ(amplifier.now() - start, seconds(30));
}

TEST_F(SessionTest, HeartbeatsGoOnWhileAnAnswerIsWaitedForAndDoNotProlongTheWait) {
    session.connect();
    const auto start = amplifier.now();
    EXPECT_EQ(failureOf([this] { session.ask(requests::currentAmplifier()); }), Failure::NoLink);
    EXPECT_GE(amplifier.now() - start, seconds(5));
    EXPECT_LE(amplifier.now() - start, milliseconds(5010));
    EXPECT_EQ(heartbeats().size(), 4u);
}

TEST_F(SessionTest, NoHeartbeatComesBetweenTheFramesOfAMessage) {
    session.connect();
    // More than a second of frames, in messages one behind the other.
    const std::string data(32000, 'x');
    amplifier.answer = [](const TarvekMessage& request) {
        return request.has_adduserir() ? Messages{messageOf("userIRAdded { name: \"a\" }")} : Messages();
    };
    const auto exchanges = session.askAll(
        {requests::addUserIR("a", data), requests::addUserIR("a", data), requests::addUserIR("a", data)});
    for (const Exchange& exchange : exchanges)
        EXPECT_EQ(exchange.state, Exchange::State::Done);
    EXPECT_GT(amplifier.now(), milliseconds(1500));
    EXPECT_TRUE(heartbeats().empty());
}
