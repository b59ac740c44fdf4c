#include <functional>
#include <gtest/gtest.h>
#include <optional>

#include "GraphUnits.h"
#include "core/System/Runlist.h"
#include "support/LogRecorder.h"
#include "utility/Clock.h"

namespace {

class RunlistTest : public testing::Test {
protected:
    OffsetUnit a{"a", 4, 44100.0f};
    OffsetUnit b{"b", 4, 44100.0f};
    OffsetUnit c{"c", 4, 44100.0f};
    Runlist list;
};

using Units = Runlist::Units;

TEST_F(RunlistTest, EditsAreNotSeenUntilTheSwap) {
    list.append(&a);
    EXPECT_TRUE(list.active().empty());
    list.swap();
    EXPECT_EQ(list.active(), Units{&a});
    EXPECT_EQ(list.pending(), Units{&a});
}

TEST_F(RunlistTest, BothListsAreEqualAfterASwapWhicheverWasLonger) {
    list.append(&a);
    list.append(&b);
    list.append(&c);
    list.swap();
    list.clear();
    list.append(&b);
    list.swap();
    EXPECT_EQ(list.active(), Units{&b});
    EXPECT_EQ(list.pending(), Units{&b});
}

TEST_F(RunlistTest, UnitsGoWhereTheyAreSent) {
    list.append(&b);
    list.appendFront(&a);
    list.insertBefore(&c, &b);
    EXPECT_EQ(list.pending(), (Units{&a, &c, &b}));
    EXPECT_EQ(list.getNext(&a), &c);
    EXPECT_EQ(list.getNext(&b), nullptr);
    list.remove(&c);
    list.insertBefore(&c, nullptr);
    EXPECT_EQ(list.pending(), (Units{&a, &b, &c}));
}

TEST_F(RunlistTest, RemoveTakesEveryEntryAndReplaceTheFirst) {
    list.append(&a);
    list.append(&b);
    list.append(&a);
    list.replace(&a, &c);
    EXPECT_EQ(list.pending(), (Units{&c, &b, &a}));
    list.append(&b);
    list.remove(&b);
    EXPECT_EQ(list.pending(), (Units{&c, &a}));
}

TEST_F(RunlistTest, ReplacingWhatIsNotThereIsAnError) {
    LogRecorder log;
    list.replace(&a, &b);
    EXPECT_TRUE(log.has("Error doh"));
    EXPECT_TRUE(list.pending().empty());
}

// A clock whose every nap calls a function.
class NapClock : public tvk::Clock {
public:
    explicit NapClock(std::function<void()> nap) : nap_(std::move(nap)) { tvk::Clock::install(this); }
    ~NapClock() override { tvk::Clock::install(nullptr); }
    std::chrono::nanoseconds now() override { return {}; }
    void sleepFor(std::chrono::nanoseconds) override { nap_(); }
    int poll(pollfd*, nfds_t, std::chrono::milliseconds) override { return 0; }

private:
    std::function<void()> nap_;
};

TEST_F(RunlistTest, ASwapWaitsForTheBlockThatWalksTheOldList) {
    list.append(&a);
    list.swap();
    std::optional<BlockEpoch::Block> block(std::in_place, list.epoch());
    const Units& walked = list.active();
    int naps = 0;
    NapClock clock([&] {
        EXPECT_EQ(walked, Units{&a}) << "rewritten under the walker";
        if (++naps == 3) block.reset();
    });
    list.clear();
    list.append(&b);
    list.swap();
    EXPECT_EQ(naps, 3);
    EXPECT_EQ(list.active(), Units{&b});
}

TEST_F(RunlistTest, ASwapDoesNotWaitForABlockThatBeganLater) {
    std::optional<BlockEpoch::Block> block(std::in_place, list.epoch());
    int naps = 0;
    NapClock clock([&] {
        ++naps;
        block.reset();
        block.emplace(list.epoch());
    });
    list.swap();
    EXPECT_EQ(naps, 1);
}

TEST_F(RunlistTest, ASwapDoesNotWaitWhenNoAudioRuns) {
    int naps = 0;
    NapClock clock([&] { ++naps; });
    list.append(&a);
    list.swap();
    EXPECT_EQ(naps, 0);
}

}  // namespace
