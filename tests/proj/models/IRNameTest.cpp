#include <gtest/gtest.h>
#include <string>

#include "proj/models/IRName.h"

namespace {

using namespace std::string_literals;

TEST(IRName, OrdinaryNamesAreValid) {
    for (const std::string& name : {"a"s, "Room 3"s, "a.wav"s, "..."s, ".hidden"s, "Grün"s, "None"s, "none"s,
                                    "a\\b"s, "%s%n"s, "x.tmp"s})
        EXPECT_TRUE(tvk::isValidIRName(name)) << name;
}

TEST(IRName, WhatIsNoEntryOfAFolderIsRefused) {
    for (const std::string& name : {""s, "."s, ".."s, "/"s, "a/b"s, "../a"s, "a\0b"s})
        EXPECT_FALSE(tvk::isValidIRName(name)) << name;
}

TEST(IRName, ControlBytesAreRefused) {
    for (int byte = 0; byte < 0x20; ++byte)
        EXPECT_FALSE(tvk::isValidIRName("a"s + static_cast<char>(byte))) << byte;
    EXPECT_FALSE(tvk::isValidIRName("a\x7F"));
}

TEST(IRName, BytesThatNoMessageCanTellAreRefused) {
    EXPECT_FALSE(tvk::isValidIRName("a\xFF"));
    EXPECT_FALSE(tvk::isValidIRName("\xC3"));
}

// With ".wav" and ".tmp" behind it a name of 247 bytes fills an entry of 255.
TEST(IRName, TwoHundredFortySevenBytesAreTheMost) {
    EXPECT_TRUE(tvk::isValidIRName(std::string(247, 'x')));
    EXPECT_FALSE(tvk::isValidIRName(std::string(248, 'x')));
}

TEST(IRName, TheNamesForNoneAreNoNamesForAnUpload) {
    EXPECT_TRUE(tvk::isNoIR("None"));
    EXPECT_TRUE(tvk::isNoIR("none"));
    EXPECT_FALSE(tvk::isNoIR("NONE"));
    EXPECT_FALSE(tvk::isValidUserIRName("None"));
    EXPECT_FALSE(tvk::isValidUserIRName("none"));
    EXPECT_TRUE(tvk::isValidUserIRName("Nones"));
    EXPECT_FALSE(tvk::isValidUserIRName(".."));
}

}  // namespace
