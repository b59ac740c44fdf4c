#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

#include "picture/BeforeAfter.h"

using ::testing::HasSubstr;
using ::testing::Not;
using tvk::picture::drawBeforeAfter;
using tvk::picture::Recording;

namespace {

Recording tone(const std::string& name, float peak, int frames) {
    Recording recording{name, {}};
    for (int i = 0; i < frames; ++i)
        recording.samples.push_back(peak * std::sin(0.1f * static_cast<float>(i)));
    return recording;
}

// All points of the traces and areas of a page lie on it.
void expectPointsOnPage(const std::string& svg) {
    const std::string opening = "points=\"";
    int count = 0;
    for (std::size_t at = svg.find(opening); at != std::string::npos; at = svg.find(opening, at + 1)) {
        const std::size_t from = at + opening.size();
        std::istringstream points(svg.substr(from, svg.find('"', from) - from));
        double x = 0.0;
        double y = 0.0;
        char comma = 0;
        for (; points >> x >> comma >> y; ++count)
            ASSERT_TRUE(x >= 0.0 && x <= 960.0 && y >= 0.0 && y <= 720.0) << x << ' ' << y;
        ASSERT_TRUE(points.eof()) << "a coordinate is no number";
    }
    EXPECT_GT(count, 100);
}

}  // namespace

TEST(BeforeAfter, TellsBothPeaksAndStaysOnItsPage) {
    const std::string svg = drawBeforeAfter(tone("before", 0.25f, 44100), tone("after", 0.75f, 88200), 44100);
    EXPECT_THAT(svg, HasSubstr("before, peak 0.250"));
    EXPECT_THAT(svg, HasSubstr("after, peak 0.750"));
    expectPointsOnPage(svg);
}

TEST(BeforeAfter, SilentShortAndEmptyRecordingsAreDrawn) {
    for (const int frames : {0, 1, 100, 44100}) {
        const std::string svg =
            drawBeforeAfter(tone("before", 0.0f, frames), tone("after", 0.0f, 1000), 44100);
        EXPECT_THAT(svg, Not(HasSubstr("nan")));
        expectPointsOnPage(svg);
    }
}

TEST(BeforeAfter, NamesCannotBreakThePage) {
    const std::string svg = drawBeforeAfter(tone("<a & b>", 0.1f, 1000), tone("after", 0.1f, 1000), 44100);
    EXPECT_THAT(svg, HasSubstr("&lt;a &amp; b&gt;"));
    EXPECT_THAT(svg, Not(HasSubstr("<a & b>")));
}
