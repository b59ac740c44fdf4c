#include <gtest/gtest.h>
#include <stdexcept>

#include "desk/soundcard/Fault.h"

using tvk::desk::Fault;

TEST(Fault, EveryFormIsRead) {
    const Fault capture = Fault::parse("xrun-capture@7");
    EXPECT_EQ(capture.kind, Fault::Kind::XrunCapture);
    EXPECT_EQ(capture.period, 7u);
    const Fault playback = Fault::parse("xrun-playback@0");
    EXPECT_EQ(playback.kind, Fault::Kind::XrunPlayback);
    EXPECT_EQ(playback.period, 0u);
    const Fault shortRead = Fault::parse("short-read@1234567890");
    EXPECT_EQ(shortRead.kind, Fault::Kind::ShortRead);
    EXPECT_EQ(shortRead.period, 1234567890u);
    const Fault gone = Fault::parse("gone@100+25");
    EXPECT_EQ(gone.kind, Fault::Kind::Gone);
    EXPECT_EQ(gone.period, 100u);
    EXPECT_EQ(gone.periods, 25u);
}

TEST(Fault, AnythingElseIsRefused) {
    for (const char* text : {"", "xrun-capture", "xrun-capture@", "xrun-capture@-1", "gone@5", "gone@5+",
                             "short-read@1+2", "short-read@12345678901", "XRUN-CAPTURE@1", "xrun-capture@1 "})
        EXPECT_THROW(Fault::parse(text), std::invalid_argument) << text;
}
