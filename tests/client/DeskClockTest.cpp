// The clock against a peer whose answers have been written before, since a line at a time is all it is.
#include <functional>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include "client/ClientError.h"
#include "client/DeskClock.h"
#include "client/Link.h"
#include "support/HandClock.h"

using namespace tvk::client;
using std::chrono::milliseconds;

namespace {

// A link on which a report waits at the look of that number, counted from 1.
class LateLink final : public Link {
public:
    explicit LateLink(int look) : look_(look) {}
    bool send(const Report&) override { return true; }
    bool receive(Report& report, milliseconds limit) override {
        EXPECT_EQ(limit.count(), 0) << "it waits in the machine's time";
        report.fill(1);
        return ++looks_ == look_;
    }

private:
    int look_;
    int looks_ = 0;
};

class ClientDeskClockTest : public testing::Test {
protected:
    ClientDeskClockTest() {
        int ends[2] = {-1, -1};
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0, ends), 0);
        desk = Descriptor(ends[0]);
        clock = std::make_unique<DeskClock>(Descriptor(ends[1]), "the desk");
    }
    void answer(const std::string& lines) const {
        EXPECT_EQ(::send(desk.get(), lines.data(), lines.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(lines.size()));
    }
    std::string asked() const {
        std::string text(1000, '\0');
        const ssize_t count = recv(desk.get(), text.data(), text.size(), 0);
        text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
        return text;
    }
    std::string failure() {
        LateLink link(2);
        try {
            clock->receive(link, report, milliseconds(1));
        } catch (const ClientError& error) {
            EXPECT_EQ(error.getFailure(), Failure::NoLink);
            return error.what();
        }
        return {};
    }

    HandClock machine;
    Descriptor desk;
    std::unique_ptr<DeskClock> clock;
    Report report{};
};

}  // namespace

TEST_F(ClientDeskClockTest, WaitsInStepsOfAMillisecondUntilAReportComes) {
    LateLink link(4);
    answer("at 12.001\nat 12.002\nat 12.003\nat 12.004\n");
    EXPECT_TRUE(clock->receive(link, report, milliseconds(100)));
    EXPECT_EQ(asked(), "run 0.001\nrun 0.001\nrun 0.001\n");
    EXPECT_EQ(clock->now(), milliseconds(3));
}

TEST_F(ClientDeskClockTest, AReportThatIsThereTakesNoTime) {
    LateLink link(1);
    EXPECT_TRUE(clock->receive(link, report, milliseconds(100)));
    EXPECT_EQ(asked(), "");
    EXPECT_EQ(clock->now(), milliseconds(0));
}

TEST_F(ClientDeskClockTest, AWaitEndsAtItsLimit) {
    LateLink link(0);
    answer("at 0.001\nat 0.002\n");
    EXPECT_FALSE(clock->receive(link, report, milliseconds(2)));
    EXPECT_EQ(asked(), "run 0.001\nrun 0.001\n");
    EXPECT_EQ(clock->now(), milliseconds(2));
}

TEST_F(ClientDeskClockTest, TimeThatOthersHaveLetPassCounts) {
    LateLink link(0);
    answer("at 5\nat 8.5\n");
    EXPECT_FALSE(clock->receive(link, report, milliseconds(2)));
    EXPECT_EQ(clock->now(), milliseconds(3501));
}

TEST_F(ClientDeskClockTest, AnErrorOfTheDeskIsTold) {
    answer("error the run is \x1b[1mover\n");
    EXPECT_EQ(failure(), "the clock at the desk says \"the run is \\x1B[1mover\"");
}

TEST_F(ClientDeskClockTest, AnAnswerThatIsNoTimeIsTold) {
    for (const char* line : {"", "at", "at ", "at soon", "at 1x", "at nan", "at inf", "at -1", "at 1e300",
                             "run 1", "At 1", "at 1 2"}) {
        answer(std::string(line) + "\n");
        EXPECT_EQ(failure(), "the clock at the desk answers \"" + std::string(line) + "\", which is no time");
    }
}

TEST_F(ClientDeskClockTest, ALineThatDoesNotEndIsTold) {
    answer(std::string(10000, 'a'));
    EXPECT_EQ(failure(), "the clock at the desk answers with a line that does not end");
}

TEST_F(ClientDeskClockTest, AnAnswerInPiecesIsPutTogether) {
    answer("at 0.0");
    // The rest comes while the clock waits.
    class Teller final : public tvk::Clock {
    public:
        explicit Teller(std::function<void()> tell) : tell_(std::move(tell)) { install(this); }
        ~Teller() override { install(nullptr); }
        std::chrono::nanoseconds now() override { return {}; }
        void sleepFor(std::chrono::nanoseconds) override {}
        int poll(pollfd* descriptors, nfds_t count, milliseconds) override {
            if (::poll(descriptors, count, 0) == 0) tell_();
            return 1;
        }

    private:
        std::function<void()> tell_;
    };
    const Teller teller([this] { answer("01\n"); });
    EXPECT_EQ(failure(), "");
    EXPECT_EQ(clock->now(), milliseconds(1));
}

TEST_F(ClientDeskClockTest, SilenceIsToldAndSoIsTheEnd) {
    // The hand clock's waits for descriptors end at once.
    EXPECT_EQ(failure(), "the clock at the desk does not answer");
    desk = Descriptor();
    EXPECT_TRUE(failure().starts_with("the clock at the desk "));
}
