// The connection: its bytes, its life, what ends it, and what it does to the sound.
#include <csignal>

#include "blackbox/client/ClientConversation.h"
#include "client/FrameCodec.h"
#include "client/MessageCodec.h"

using ::testing::ElementsAre;

namespace fs = std::filesystem;
namespace requests = tvk::client::requests;
using tvk::client::Report;

namespace {

class Connection : public ClientConversation {
protected:
    void SetUp() override { start(); }

    // One report from a link that has no session, as the test lets time pass; none within that time.
    std::optional<Report> receive(tvk::client::Link& link, double seconds) {
        SteppedClientClock clock = clientClockOf(desk());
        Report report{};
        if (clock.receive(link, report, std::chrono::milliseconds(std::llround(seconds * 1e3))))
            return report;
        return std::nullopt;
    }

    static Report reportOf(const std::vector<unsigned char>& bytes) {
        Report report{};
        std::copy(bytes.begin(), bytes.end(), report.begin());
        return report;
    }

    const Report request_ = reportOf({0x35, 0, 8, 0x08, 1, 0x22, 4, 0x0A, 2, 8, 1});
    const Report response_ = reportOf({0, 0x35, 0, 8, 0x08, 1, 0x22, 4, 0x12, 2, 8, 1});
    const Report alreadyOpen_ = reportOf({0, 0x35, 0, 8, 0x08, 1, 0x22, 4, 0x1A, 2, 8, 1});
    const Report notOpen_ = reportOf({0, 0x35, 0, 8, 0x08, 1, 0x22, 4, 0x1A, 2, 8, 2});
    const Report heartbeat_ = reportOf({0x35, 0, 8, 0x08, 1, 0x22, 4, 0x22, 2, 8, 1});
    const Report getAmplifier_ = reportOf({0x35, 0, 7, 0x08, 1, 0xAA, 2, 2, 8, 1});
};

}  // namespace

TEST_F(Connection, OpensByteForByteAndOnce) {
    tvk::client::SocketLink link(desk().readyText("hid"));
    EXPECT_TRUE(link.send(getAmplifier_));
    EXPECT_EQ(receive(link, 0.1), notOpen_);
    EXPECT_TRUE(link.send(request_));
    EXPECT_EQ(receive(link, 0.1), response_);
    EXPECT_TRUE(link.send(request_));
    EXPECT_EQ(receive(link, 0.1), alreadyOpen_);
}

TEST_F(Connection, LapsesAfterFiveSecondsOfSilenceAndNotBefore) {
    tvk::client::SocketLink link(desk().readyText("hid"));
    link.send(request_);
    EXPECT_EQ(receive(link, 0.1), response_);
    desk().run(4.9);
    link.send(heartbeat_);
    desk().run(4.9);
    link.send(request_);
    EXPECT_EQ(receive(link, 0.1), alreadyOpen_);
    desk().run(5.1);
    link.send(getAmplifier_);
    EXPECT_EQ(receive(link, 0.1), notOpen_);
}

TEST_F(Connection, ANextProgramTakesOverAndASecondIsTurnedAway) {
    connect();
    hangUp();
    connect();  // told that it is open already
    tvk::client::SocketLink second(desk().readyText("hid"));
    desk().run(0.05);
    Report report{};
    EXPECT_THROW(second.receive(report, std::chrono::milliseconds(0)), tvk::client::ClientError);
    EXPECT_THAT(answersTo(requests::currentAmplifier()),
                ElementsAre("currentAmplifierResponse { dummy: true }"));
}

TEST_F(Connection, SurvivesGarbageBetweenItsMessages) {
    connect();
    hangUp();
    tvk::client::SocketLink raw(desk().readyText("hid"));
    for (int seed = 0; seed < 200; ++seed) {
        Report garbage{};
        for (std::size_t i = 0; i < garbage.size(); ++i)
            garbage[i] = static_cast<std::uint8_t>((static_cast<std::size_t>(seed) * 131 + i * i * 29) >> 2);
        raw.send(garbage);
        desk().run(0.002);
    }
    // A frame that is whole ends whatever the garbage began.
    raw.send(request_);
    bool isAnswered = false;
    while (const auto report = receive(raw, 0.3))
        isAnswered = isAnswered || *report == response_ || *report == alreadyOpen_;
    if (!isAnswered) {
        raw.send(request_);
        while (const auto report = receive(raw, 0.3))
            isAnswered = isAnswered || *report == response_ || *report == alreadyOpen_;
    }
    EXPECT_TRUE(isAnswered);
}

TEST_F(Connection, UnpluggingEndsTheProgramAndPluggingStartsAnew) {
    start({"--fault", "hid-unplug@0.5", "--fault", "hid-plug@1.0"});
    connect();
    desk().run(0.6);
    EXPECT_THROW(ask(requests::currentAmplifier()), tvk::client::ClientError);
    hangUp();
    desk().run(0.5);
    connect();
    EXPECT_THAT(answersTo(requests::currentAmplifier()),
                ElementsAre("currentAmplifierResponse { dummy: true }"));
}

TEST_F(Connection, WithoutACableThereIsNoHost) {
    start({"--no-host"});
    EXPECT_THROW(connect(), tvk::client::ClientError);
}

TEST_F(Connection, ABatchIsCarriedOutWholeAndInOrder) {
    connect();
    TarvekMessage first = requests::setCabsimHpf(0, 30.0f);
    TarvekMessage middle = requests::setCabsimHpf(0, 40.0f);
    TarvekMessage last = requests::setCabsimLpf(0, 9000.0f);
    first.set_batchstatus(1);
    middle.set_batchstatus(2);
    last.set_batchstatus(3);
    session().ask(first);
    session().ask(middle);
    EXPECT_EQ(slot(0).hpf(), 20.0f);  // not yet
    session().askAll({last});
    EXPECT_EQ(slot(0).hpf(), 40.0f);
    EXPECT_EQ(slot(0).lpf(), 9000.0f);
}

TEST_F(Connection, ABatchEndsWithItsConnection) {
    connect();
    TarvekMessage first = requests::setCabsimHpf(0, 30.0f);
    first.set_batchstatus(1);
    session().ask(first);
    hangUp();
    desk().run(6.0);
    connect();
    TarvekMessage last = requests::setCabsimLpf(0, 9000.0f);
    last.set_batchstatus(3);
    session().askAll({last});
    EXPECT_EQ(slot(0).hpf(), 20.0f);
    EXPECT_EQ(slot(0).lpf(), 9000.0f);
}

// Replies that find no room are lost, each with its warning; once the host reads again everything goes on.
TEST_F(Connection, AHostThatStopsReadingLosesRepliesAndNothingElse) {
    connect();
    hangUp();
    tvk::client::SocketLink deaf(desk().readyText("hid"));
    // The socket holds so many reports before the amplifier finds the link busy, and then its queue fills.
    for (int i = 0; i < 1500; ++i) {
        deaf.send(getAmplifier_);
        desk().run(0.002);
    }
    desk().run(1.5);
    const auto lines = desk().process().errorLines();
    const auto isWarning = [](const std::string& line) {
        return line.find("Failed to send current amplifier response message.") != std::string::npos;
    };
    EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), isWarning));
    while (receive(deaf, 0.2)) {
    }
    deaf.send(getAmplifier_);
    EXPECT_TRUE(receive(deaf, 0.2));
}

TEST_F(Connection, AnUploadedResponseIsHeardAndSavedAndComesBackAfterARestart) {
    connect();
    const double before = listen();
    ask(requests::addUserIR("dark", testCabinet(1)));
    ask(requests::assignUserIR(0, "dark"));
    const double with = listen();
    ask(requests::saveCurrentState());
    const double beforeDb = trebleOf(before);
    const double withDb = trebleOf(with);
    EXPECT_LT(withDb, beforeDb - 10.0);
    start();
    const double again = listen();
    EXPECT_NEAR(trebleOf(again), withDb, 1.0);
}

TEST_F(Connection, TheCabinetSwitchIsSilentWhileAClientIsConnectedAndCountsAfterwards) {
    connect();
    ask(requests::addUserIR("dark", testCabinet(1)));
    ask(requests::assignUserIR(1, "dark"));
    ask(requests::saveCurrentState());
    const double first = listen();
    desk().move("PB2_AND_PB10", 1);
    const double held = listen();
    hangUp();
    desk().run(5.5);
    const double free = listen();
    const double firstDb = trebleOf(first);
    EXPECT_NEAR(trebleOf(held), firstDb, 1.0);
    EXPECT_LT(trebleOf(free), firstDb - 10.0);
}

TEST_F(Connection, AnUnsavedEditLapsesWithTheConnection) {
    connect();
    ask(requests::setCabsimHpf(0, 99.0f));
    hangUp();
    desk().run(5.5);
    connect();
    EXPECT_EQ(slot(0).hpf(), 20.0f);
}

TEST_F(Connection, FiftyUploadsOfFullSizeKeepThePaceOfOneFrameAMillisecond) {
    connect();
    // 60 bytes of a message go in one frame; the message is as long as it may be.
    const std::string data(32768 - 40, 'x');
    const double start = desk().time();
    for (int i = 0; i < 50; ++i)
        ask(requests::addUserIR("response " + std::to_string(i), data));
    const double milliseconds = 1e3 * (desk().time() - start);
    RecordProperty("milliseconds_each", std::to_string(milliseconds / 50.0));
    EXPECT_LE(milliseconds, 50.0 * (547.0 + 20.0));
    EXPECT_EQ(userNames().size(), 50u);
}
