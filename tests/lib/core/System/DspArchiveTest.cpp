#include <climits>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>

#include "core/System/ArchiveKey.h"
#include "core/System/DspArchive.h"
#include "support/LogRecorder.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::string textOf(const DspArchive& archive) {
    std::ostringstream stream;
    stream << archive;
    return stream.str();
}

template <typename T>
T get(const std::string& json, T value) {
    DspArchive(json).get("k", value);
    return value;
}

TEST(DspArchive, StartsEmpty) {
    DspArchive archive;
    EXPECT_TRUE(archive.isEmpty());
    EXPECT_EQ(archive.getArraySize(), 0);
    EXPECT_EQ(archive.getCursor(), archive.getRoot());
    EXPECT_EQ(archive.toString(), "null");
}

TEST(DspArchive, ReadsEveryTypeBack) {
    DspArchive archive;
    archive.set("f", 0.1f);
    archive.set("i", -7);
    archive.set("d", 1539983858.25);
    archive.set("b", true);
    archive.set("s", "text");
    DspArchive again(archive.toString());
    float f = 0;
    int i = 0;
    double d = 0;
    bool b = false;
    std::string s;
    again.get("f", f);
    again.get("i", i);
    again.get("d", d);
    again.get("b", b);
    again.get("s", s);
    EXPECT_EQ(f, 0.1f);
    EXPECT_EQ(i, -7);
    EXPECT_EQ(d, 1539983858.25);
    EXPECT_TRUE(b);
    EXPECT_EQ(s, "text");
}

TEST(DspArchive, KeepsTheOrderOfKeysAndWritesCompact) {
    const std::string json = R"({"z":1,"a":{"y":[1,2.5,"x"],"b":null},"m":true})";
    DspArchive archive;
    std::istringstream stream(json);
    stream >> archive;
    EXPECT_EQ(textOf(archive), json);
    archive.set("z", 3);
    archive.set("c", 4);
    EXPECT_EQ(textOf(archive), R"({"z":3,"a":{"y":[1,2.5,"x"],"b":null},"m":true,"c":4})");
}

TEST(DspArchive, AMissingKeyWarnsAndLeavesTheVariable) {
    LogRecorder log;
    DspArchive archive(R"({"a":1})");
    float level = 0.5f;
    bool flag = true;
    archive.get("level", level);
    archive.get("flag", flag);
    EXPECT_EQ(level, 0.5f);
    EXPECT_TRUE(flag);
    EXPECT_THAT(log.lines(),
                ElementsAre("DspFileJSON: get(level)", "Warn Failed to get value at key \"level\".",
                            "DspFileJSON: get(flag)", "Warn Key not found: \"flag\"."));
}

TEST(DspArchive, ACursorThatIsNoObjectActsAsAMissingKey) {
    LogRecorder log;
    EXPECT_EQ(get(R"([1])", 5), 5);
    EXPECT_TRUE(log.has("Warn Failed to get value at key \"k\"."));
}

TEST(DspArchive, AValueOfAnotherTypeWarnsWithTheParsersTextAndLeavesTheVariable) {
    LogRecorder log;
    EXPECT_EQ(get(R"({"k":"text"})", 0.5f), 0.5f);
    EXPECT_EQ(get(R"({"k":"text"})", 3), 3);
    EXPECT_EQ(get(R"({"k":true})", 0.25), 0.25);
    EXPECT_EQ(get(R"({"k":1})", false), false);
    EXPECT_EQ(get<std::string>(R"({"k":1})", "kept"), "kept");
    const auto warnings = log.startingWith("Warn ");
    ASSERT_EQ(warnings.size(), 5u);
    EXPECT_THAT(warnings[0], StartsWith("Warn Failed to get value at key \"k\": [json.exception.type_error"));
    EXPECT_THAT(warnings[0], HasSubstr("type must be number, but is string"));
    EXPECT_THAT(warnings[1], HasSubstr("type must be number, but is string"));
    EXPECT_THAT(warnings[2], HasSubstr("type must be number, but is boolean"));
    EXPECT_THAT(warnings[3], HasSubstr("type must be boolean, but is number"));
    EXPECT_THAT(warnings[4], HasSubstr("type must be string, but is number"));
}

TEST(DspArchive, AnIntegerIsReadAsAFloatWithoutAFault) {
    LogRecorder log;
    EXPECT_EQ(get(R"({"k":12})", 0.0f), 12.0f);
    EXPECT_TRUE(log.startingWith("Warn").empty());
}

TEST(DspArchive, NumbersAreClampedToTheTypeTheyAreReadInto) {
    EXPECT_EQ(get(R"({"k":2.9})", 0), 2);
    EXPECT_EQ(get(R"({"k":-2.9})", 0), -2);
    EXPECT_EQ(get(R"({"k":1e30})", 0), INT_MAX);
    EXPECT_EQ(get(R"({"k":-1e30})", 0), INT_MIN);
    EXPECT_EQ(get(R"({"k":5000000000})", 0), INT_MAX);
    EXPECT_EQ(get(R"({"k":-5000000000})", 0), INT_MIN);
    EXPECT_EQ(get(R"({"k":18446744073709551615})", 0), INT_MAX);
    EXPECT_EQ(get(R"({"k":2147483647})", 0), INT_MAX);
    EXPECT_EQ(get(R"({"k":1e300})", 0.0f), std::numeric_limits<float>::max());
    EXPECT_EQ(get(R"({"k":-1e300})", 0.0f), -std::numeric_limits<float>::max());
}

TEST(DspArchive, NotANumberIsReadAsTheIntegerZero) {
    DspArchive archive;
    archive.set("k", std::numeric_limits<double>::quiet_NaN());
    int value = 5;
    archive.get("k", value);
    EXPECT_EQ(value, 0);
}

TEST(DspArchive, SetLogsItsValue) {
    LogRecorder log;
    DspArchive archive;
    archive.set("s", "text");
    archive.set("f", 0.5f);
    archive.set("d", 2.0);
    archive.set("i", 3);
    archive.set("b", false);
    archive.set("a", DspArchive("{}"));
    archive.replace("i", 4);
    archive.replace("a", DspArchive("1"));
    EXPECT_THAT(
        log.lines(),
        ElementsAre("DspFileJSON: set(s, text)", "DspFileJSON: set(f, 0.500)", "DspFileJSON: set(d, 2.000)",
                    "DspFileJSON: set(i, 3)", "DspFileJSON: set(b, false)", "DspFileJSON: set(a, DspArchive)",
                    "DspFileJSON: replace(i, 4)", "DspFileJSON: replace(a, DspArchive)"));
}

TEST(DspArchive, SetWhereNoMemberCanBeWarns) {
    LogRecorder log;
    DspArchive archive("[1]");
    archive.set("k", 1);
    EXPECT_EQ(archive.toString(), "[1]");
    ASSERT_EQ(log.startingWith("Warn").size(), 1u);
    EXPECT_THAT(log.startingWith("Warn")[0],
                StartsWith("Warn Failed to set value at key \"k\": [json.exception"));
}

TEST(DspArchive, SetOfArchivesMakesAndExtendsAnArray) {
    LogRecorder log;
    DspArchive archive;
    archive.set("nodes", DspArchive(R"({"n":1})"));
    archive.set("nodes", DspArchive(R"({"n":2})"));
    EXPECT_EQ(archive.toString(), R"({"nodes":[{"n":1},{"n":2}]})");
    archive.set("x", 1);
    archive.set("x", DspArchive("{}"));
    EXPECT_EQ(archive.toString(), R"({"nodes":[{"n":1},{"n":2}],"x":1})");
    EXPECT_EQ(log.startingWith("Warn Failed to set value at key \"x\": ").size(), 1u);
}

TEST(DspArchive, AnArchiveMayBeSetIntoItself) {
    DspArchive archive(R"({"a":1})");
    archive.set("copy", archive);
    EXPECT_EQ(archive.toString(), R"({"a":1,"copy":[{"a":1}]})");
}

TEST(DspArchive, ReplaceOverwritesOnlyWhatIsThere) {
    LogRecorder log;
    DspArchive archive(R"({"f":1,"i":2,"d":3,"b":false,"s":"x","a":[1,2]})");
    archive.replace("f", 0.5f);
    archive.replace("i", 7);
    archive.replace("d", 0.25);
    archive.replace("b", true);
    archive.replace("s", "y");
    archive.replace("new", 1);
    ASSERT_TRUE(archive.enterObject("a"));
    archive.replace(1, DspArchive(R"({"k":0})"));
    archive.replace(2, DspArchive("0"));
    archive.replace(-1, DspArchive("0"));
    archive.rewind();
    EXPECT_EQ(archive.toString(), R"({"f":0.5,"i":7,"d":0.25,"b":true,"s":"y","a":[1,{"k":0}]})");
    const auto warnings = log.startingWith("Warn");
    ASSERT_EQ(warnings.size(), 3u);
    EXPECT_THAT(warnings[0], StartsWith("Warn Failed to replace value at key new: [json.exception"));
    EXPECT_THAT(warnings[1], StartsWith("Warn Failed to replace value at index 2: [json.exception"));
    EXPECT_THAT(warnings[2], StartsWith("Warn Failed to replace value at index -1: [json.exception"));
}

TEST(DspArchive, RemoveTakesMembersAndItemsAndWarnsWhereItCannot) {
    LogRecorder log;
    DspArchive archive(R"({"a":[1,2,3],"b":1,"c":2})");
    archive.remove("b");
    archive.enterObject("a");
    archive.remove(0);
    archive.remove(9);
    archive.remove("k");
    archive.rewind();
    EXPECT_EQ(archive.toString(), R"({"a":[2,3],"c":2})");
    const auto warnings = log.startingWith("Warn");
    ASSERT_EQ(warnings.size(), 2u);
    EXPECT_THAT(warnings[0], StartsWith("Warn Failed to remove value at index 9: "));
    EXPECT_THAT(warnings[1], StartsWith("Warn Failed to remove value at key k: "));
}

TEST(DspArchive, EnteringAMissingKeyReturnsFalseSilentlyAndDoesNotMove) {
    LogRecorder log;
    DspArchive archive(R"({"a":{"b":1},"n":3})");
    ASSERT_TRUE(archive.enterObject("a"));
    const void* before = archive.getCursor();
    EXPECT_FALSE(archive.enterObject("x"));
    EXPECT_EQ(archive.getCursor(), before);
    archive.leaveObject();
    ASSERT_TRUE(archive.enterObject("n"));
    EXPECT_FALSE(archive.enterObject("a"));
    EXPECT_TRUE(log.lines().empty());
}

TEST(DspArchive, TheRootIsNeverLeft) {
    DspArchive archive(R"({"a":{}})");
    archive.leaveObject();
    archive.endArray();
    EXPECT_EQ(archive.getCursor(), archive.getRoot());
    archive.enterObject("a");
    archive.leaveObject();
    archive.endObject();
    EXPECT_EQ(archive.getCursor(), archive.getRoot());
    archive.set("k", 1);
    EXPECT_EQ(archive.toString(), R"({"a":{},"k":1})");
}

TEST(DspArchive, BeginMakesObjectsAndArraysOrGoesIntoThem) {
    DspArchive archive;
    for (int round = 0; round < 2; ++round) {
        archive.beginObject("graph");
        archive.beginArray("nodes");
        archive.beginObject("ignored");
        archive.set("round", round);
        archive.endObject();
        archive.beginArray("ignored");
        archive.endArray();
        archive.endArray();
        archive.endObject();
    }
    EXPECT_EQ(archive.getCursor(), archive.getRoot());
    EXPECT_EQ(archive.toString(), R"({"graph":{"nodes":[{"round":0},[],{"round":1},[]]}})");
}

TEST(DspArchive, BeginWithoutAPlaceIsAnErrorAndNoMove) {
    LogRecorder log;
    DspArchive archive(R"({"n":1,"a":[]})");
    archive.beginObject("n");
    archive.beginObject("a");
    archive.beginArray("n");
    EXPECT_EQ(archive.getCursor(), archive.getRoot());
    archive.enterObject("n");
    archive.beginObject("x");
    EXPECT_EQ(log.count("Error Unable to push key"), 4);
    archive.rewind();
    EXPECT_EQ(archive.toString(), R"({"n":1,"a":[]})");
}

TEST(DspArchive, ArrayItemsAreReadByIndex) {
    LogRecorder log;
    DspArchive archive(R"(["s",0.5,2,true,{"k":1}])");
    ASSERT_EQ(archive.getArraySize(), 5);
    std::string s;
    float f = 0;
    double d = 0;
    int i = 0;
    bool b = false;
    archive.getArrayItem(0, s);
    archive.getArrayItem(1, f);
    archive.getArrayItem(1, d);
    archive.getArrayItem(2, i);
    archive.getArrayItem(3, b);
    EXPECT_EQ(s, "s");
    EXPECT_EQ(f, 0.5f);
    EXPECT_EQ(d, 0.5);
    EXPECT_EQ(i, 2);
    EXPECT_TRUE(b);
    EXPECT_TRUE(log.has("DspFileJSON: getArrayItem(3)"));
    EXPECT_TRUE(log.startingWith("Warn").empty());
    archive.getArrayItem(0, i);
    archive.getArrayItem(5, i);
    archive.getArrayItem(-1, i);
    EXPECT_EQ(i, 2);
    const auto warnings = log.startingWith("Warn");
    ASSERT_EQ(warnings.size(), 3u);
    EXPECT_THAT(warnings[0], HasSubstr("Failed to get value at index 0: "));
    EXPECT_THAT(warnings[0], HasSubstr("type must be number, but is string"));
    EXPECT_THAT(warnings[1], StartsWith("Warn Failed to get value at index 5: "));
    EXPECT_THAT(warnings[2], StartsWith("Warn Failed to get value at index -1: "));
}

TEST(DspArchive, EnteringAnItemThatIsNotThereReturnsFalseAndDoesNotMove) {
    DspArchive archive(R"([{"k":1},2])");
    EXPECT_FALSE(archive.enterArrayItem(2));
    EXPECT_FALSE(archive.enterArrayItem(-1));
    EXPECT_EQ(archive.getCursor(), archive.getRoot());
    ASSERT_TRUE(archive.enterArrayItem(0));
    EXPECT_FALSE(archive.enterArrayItem(0));
    int value = 0;
    archive.get("k", value);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(archive.toString(), R"({"k":1})");
}

TEST(DspArchive, ACopyIsDeepAndItsCursorStandsAtTheSamePlace) {
    DspArchive archive(R"({"a":0,"b":[{"c":1},{"c":2}]})");
    archive.enterObject("b");
    archive.enterArrayItem(1);
    DspArchive copy(archive);
    copy.set("c", 3);
    copy.set("grown", "beyond the room of the first");
    EXPECT_EQ(archive.toString(), R"({"c":2})");
    copy.leaveObject();
    EXPECT_EQ(copy.getArraySize(), 2);
    copy.leaveObject();
    EXPECT_EQ(copy.getCursor(), copy.getRoot());
    EXPECT_NE(copy.getRoot(), archive.getRoot());
    EXPECT_EQ(copy.toString(), R"({"a":0,"b":[{"c":1},{"c":3,"grown":"beyond the room of the first"}]})");
    DspArchive assigned;
    assigned = archive;
    EXPECT_EQ(assigned.toString(), R"({"c":2})");
    assigned = *&assigned;
    EXPECT_EQ(assigned.toString(), R"({"c":2})");
}

TEST(DspArchive, MalformedTextThrowsTheParsersErrorAndLeavesTheArchiveEmpty) {
    for (const char* text : {"", "{", "[1,]", "{\"a\":1}x", "\"\xff\"", "1e999"}) {
        DspArchive archive(R"({"a":{}})");
        archive.enterObject("a");
        std::istringstream stream(text);
        try {
            archive.read(stream);
            ADD_FAILURE() << "no exception for " << text;
        } catch (const std::exception& error) {
            EXPECT_THAT(error.what(), StartsWith("[json.exception.parse_error")) << text;
        }
        EXPECT_TRUE(archive.isEmpty());
        EXPECT_EQ(archive.getCursor(), archive.getRoot());
    }
}

std::string nested(int depth, char open, char close) {
    return std::string(static_cast<std::size_t>(depth), open) +
           std::string(static_cast<std::size_t>(depth), close);
}

TEST(DspArchive, NestingBeyond64LevelsIsAParseError) {
    EXPECT_EQ(DspArchive(nested(64, '[', ']')).toString(), nested(64, '[', ']'));
    for (int depth : {65, 100000}) {
        try {
            DspArchive archive(nested(depth, '[', ']'));
            ADD_FAILURE() << depth;
        } catch (const std::exception& error) {
            EXPECT_THAT(error.what(), StartsWith("[json.exception.parse_error"));
        }
    }
    std::string objects = "1";
    for (int i = 0; i < 64; ++i)
        objects = R"({"k":)" + objects + "}";
    EXPECT_EQ(DspArchive(objects).toString(), objects);
    EXPECT_THROW(DspArchive("[" + objects + "]"), std::exception);
}

TEST(DspArchive, BracketsInStringsAreNotNesting) {
    const std::string json = "[\"" + std::string(200, '[') + "\\\"" + std::string(200, '{') + "\"]";
    EXPECT_EQ(DspArchive(json).toString(), json);
}

TEST(DspArchive, WideDocumentsAreNotDeep) {
    std::string json = "[";
    for (int i = 0; i < 500; ++i)
        json += "[{}],";
    json += "0]";
    EXPECT_EQ(DspArchive(json).getArraySize(), 501);
}

TEST(DspArchive, InvalidUtf8IsReplacedInTheOutput) {
    DspArchive archive;
    archive.set("name", std::string("a\xff") + "b");
    EXPECT_EQ(archive.toString(),
              "{\"name\":\"a\xEF\xBF\xBD"
              "b\"}");
    EXPECT_EQ(textOf(archive), archive.toString());
}

TEST(DspArchive, ClearEmptiesAndRewindReturns) {
    DspArchive archive(R"({"a":{"b":1}})");
    archive.enterObject("a");
    archive.rewind();
    EXPECT_TRUE(archive.enterObject("a"));
    archive.clear();
    EXPECT_TRUE(archive.isEmpty());
    EXPECT_FALSE(archive.enterObject("a"));
}

TEST(ArchiveKey, AnOptionalKeyIsReadWithoutAWarning) {
    LogRecorder log;
    DspArchive archive(R"({"there":3,"text":"x"})");
    EXPECT_TRUE(hasKey(archive, "there"));
    EXPECT_FALSE(hasKey(archive, "gone"));
    EXPECT_EQ(getOptional(archive, "there", 1), 3);
    EXPECT_EQ(getOptional(archive, "gone", 1), 1);
    EXPECT_EQ(archive.getCursor(), archive.getRoot());
    EXPECT_TRUE(log.startingWith("Warn").empty());
    EXPECT_EQ(getOptional(archive, "text", 1), 1);
    EXPECT_EQ(getRequired(archive, "gone", 2), 2);
    EXPECT_EQ(log.startingWith("Warn").size(), 2u);
}

}  // namespace
