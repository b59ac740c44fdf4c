#include <gtest/gtest.h>
#include <memory>

#include "support/HandClock.h"
#include "support/LogRecorder.h"
#include "utility/LimitedLog.h"

namespace {

class LimitedLogTest : public testing::Test {
protected:
    void complain(int times) {
        for (int i = 0; i < times; ++i)
            TVK_WARN_LIMITED(*limited, "bad frame");
    }

    LogRecorder log;
    HandClock clock;
    std::unique_ptr<tvk::LimitedLog> limited = std::make_unique<tvk::LimitedLog>();
};

}  // namespace

TEST_F(LimitedLogTest, TenLinesASecondAreWrittenAsTheyAre) {
    complain(10);
    EXPECT_EQ(log.count("Warn bad frame"), 10);
    complain(500);
    EXPECT_EQ(log.lines().size(), 10u);
}

TEST_F(LimitedLogTest, TheLineAfterASilenceCountsWhatWasWithheld) {
    complain(17);
    clock.advance(std::chrono::seconds(1));
    complain(1);
    EXPECT_EQ(log.lines().back(), "Warn bad frame (and 7 more)");
    complain(1);
    EXPECT_EQ(log.lines().back(), "Warn bad frame");
}

TEST_F(LimitedLogTest, NoSecondHoldsMoreThanTenLinesHoweverItIsLaid) {
    for (int tick = 0; tick < 3000; ++tick) {
        complain(1);
        clock.advance(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(log.lines().size(), 30u);
}

TEST_F(LimitedLogTest, EachPlaceHasItsOwnLimit) {
    complain(11);
    TVK_ERROR_LIMITED(*limited, "frame %d", 3);
    EXPECT_TRUE(log.has("Error frame 3"));
}

TEST_F(LimitedLogTest, TheLastCountIsWrittenAtTheEnd) {
    complain(12);
    limited.reset();
    EXPECT_EQ(log.lines().size(), 11u);
    EXPECT_EQ(log.lines().back(), "Warn bad frame (and 1 more)");
}

TEST_F(LimitedLogTest, ATextOfThousandsOfBytesIsCut) {
    TVK_WARN_LIMITED(*limited, "%s", std::string(5000, 'x').c_str());
    EXPECT_EQ(log.lines().at(0), "Warn " + std::string(1023, 'x'));
}
