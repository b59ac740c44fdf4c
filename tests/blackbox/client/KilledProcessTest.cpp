// The process is killed while it stores what a client sends; the next one finds all of it or nothing.
#include <csignal>

#include "blackbox/client/ClientConversation.h"

using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::Not;

namespace fs = std::filesystem;
namespace requests = tvk::client::requests;

namespace {

constexpr int kCuts = 20;

struct Cut {};

// A client's clock whose time ends, and with it the process.
SteppedClientClock endingClock(HeldDesk& desk, double end) {
    return {[&desk] { return timeOf(desk); },
            [&desk, end](std::chrono::milliseconds) {
                if (desk.time() < end) return desk.run(0.001);
                desk.runAndKill(0.005);
                throw Cut();
            }};
}

class KilledProcess : public ClientConversation {
protected:
    // Stores a response, a filter and a setting; how long it took, or nothing when time ended on the way.
    std::optional<double> store(int index, double end) try {
        const double start = desk().time();
        tvk::client::SocketLink link(desk().readyText("hid"));
        SteppedClientClock clock = endingClock(desk(), start + end);
        tvk::client::Session session(link, clock);
        session.connect();
        for (const TarvekMessage& request :
             {requests::setReverbTaperType(static_cast<std::uint32_t>(index % 2)),
              requests::addUserIR("cut " + std::to_string(index), testCabinet(1)),
              requests::setCabsimHpf(0, hpfOf(index)), requests::saveCurrentState()})
            session.ask(request);
        return desk().time() - start;
    } catch (const Cut&) {
        return std::nullopt;
    }

    static float hpfOf(int index) { return 30.0f + static_cast<float>(index); }
};

}  // namespace

TEST_F(KilledProcess, LeavesTheOldStateOrTheNewOne) {
    start();
    const std::optional<double> whole = store(0, 60.0);
    ASSERT_TRUE(whole);
    float saved = hpfOf(0);
    int finished = 0;
    for (int cut = 1; cut <= kCuts; ++cut) {
        hangUp();
        finished += store(cut, *whole * cut / kCuts) ? 1 : 0;
        start();  // what still lives is killed, and a new process takes the root over
        connect();
        const float found = slot(0).hpf();
        EXPECT_THAT(found, AnyOf(saved, hpfOf(cut))) << "cut " << cut;
        saved = found;
        EXPECT_FALSE(slot(0).isdirty());
        const std::string name = "cut " + std::to_string(cut);
        const fs::path file = userData() / "userIRs" / (name + ".wav");
        EXPECT_EQ(fs::exists(file), std::ranges::count(userNames(), name) == 1) << name;
        EXPECT_TRUE(!fs::exists(file) || fileOf(file) == testCabinet(1)) << name;
        EXPECT_THAT(userNames(), Not(Contains(::testing::HasSubstr("missing"))));
    }
    EXPECT_LT(finished, kCuts / 2);
}
