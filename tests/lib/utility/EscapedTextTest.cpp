#include <gtest/gtest.h>
#include <string>

#include "utility/EscapedText.h"

namespace {

using namespace std::string_literals;

TEST(EscapedText, PlainTextAndOtherAlphabetsStay) {
    EXPECT_EQ(tvk::escaped("Room 3, far \"left\""), "Room 3, far \"left\"");
    EXPECT_EQ(tvk::escaped("Grün 音 🎸"), "Grün 音 🎸");
    EXPECT_EQ(tvk::escaped(""), "");
}

TEST(EscapedText, ControlBytesAndTheBackslashBecomeCodes) {
    EXPECT_EQ(tvk::escaped("a\nb\x1B[2J\x7F\0"s), "a\\x0Ab\\x1B[2J\\x7F\\x00");
    EXPECT_EQ(tvk::escaped("a\\x0A"), "a\\x5Cx0A");
    EXPECT_EQ(tvk::escaped("\xC2\x9B"), "\\xC2\\x9B") << "a control character of two bytes";
}

TEST(EscapedText, WhatIsNotUtf8BecomesCodesByteByByte) {
    EXPECT_EQ(tvk::escaped("a\xFFz"), "a\\xFFz");
    EXPECT_EQ(tvk::escaped("\xE9\x9F"), "\\xE9\\x9F") << "cut";
    EXPECT_EQ(tvk::escaped("\xC0\xAF"), "\\xC0\\xAF") << "longer than need be";
}

TEST(EscapedText, Utf8EndsWhereTheStandardSays) {
    for (const std::string good : {"", "abc", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
                                   "\xEE\x80\x80", "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_TRUE(tvk::isUtf8(good)) << tvk::escaped(good);
    for (const std::string bad :
         {"\x80", "\xC1\xBF", "\xC2", "\xC2\x41", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xE1\x80", "\xE1\x80\x41",
          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xF1\x80\x80\x41", "\xFF", "ok\xFE"})
        EXPECT_FALSE(tvk::isUtf8(bad)) << tvk::escaped(bad);
}

}  // namespace
