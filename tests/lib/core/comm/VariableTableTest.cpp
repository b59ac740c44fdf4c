#include <cmath>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

#include "core/comm/VariableTable.h"
#include "support/PanelVectors.h"

using namespace tvk::comm;

namespace {

using Bytes = PanelVectors::Bytes;

bool store(VariableTable& table, VariableType type, const std::string& name, const Bytes& value) {
    return table.store({type, name, value});
}

// One target of each type under one name.
struct AllTargets {
    explicit AllTargets(VariableTable& table, const std::string& name = "V") {
        table.bind(name, &single);
        table.bind(name, &u8);
        table.bind(name, &u16);
        table.bind(name, &u32);
        table.bind(name, &i8);
        table.bind(name, &i16);
        table.bind(name, &i32);
        table.bind(name, &text);
    }
    double numberOf(int type) const {
        const double numbers[] = {static_cast<double>(single), static_cast<double>(u8),
                                  static_cast<double>(u16),    static_cast<double>(u32),
                                  static_cast<double>(i8),     static_cast<double>(i16),
                                  static_cast<double>(i32)};
        return numbers[type];
    }

    float single = 99.0f;
    std::uint8_t u8 = 99;
    std::uint16_t u16 = 99;
    std::uint32_t u32 = 99;
    std::int8_t i8 = 99;
    std::int16_t i16 = 99;
    std::int32_t i32 = 99;
    std::string text = "99";
};

TEST(VariableTableTest, StoresTheNumberOfEveryVectorInTheTargetOfItsType) {
    int numbers = 0;
    for (const PanelVectors::Frame& frame : PanelVectors::all().frames) {
        if (frame.variable.name != "V") continue;
        VariableTable table;
        AllTargets targets(table);
        const auto type = static_cast<VariableType>(frame.variable.type);
        EXPECT_TRUE(store(table, type, "V", frame.variable.value));
        if (frame.number) {
            const double wanted = type == VariableType::Float
                                      ? static_cast<double>(static_cast<float>(*frame.number))
                                      : *frame.number;
            EXPECT_EQ(targets.numberOf(frame.variable.type), wanted);
            EXPECT_EQ(std::signbit(targets.numberOf(frame.variable.type)), std::signbit(wanted));
            ++numbers;
        } else {
            EXPECT_EQ(targets.text, std::string(frame.variable.value.begin(), frame.variable.value.end()));
        }
        for (int other = 0; other < 7; ++other)
            EXPECT_TRUE(other == frame.variable.type || targets.numberOf(other) == 99.0);
    }
    EXPECT_GT(numbers, 30);
}

TEST(VariableTableTest, DropsWhatHasNoName) {
    VariableTable table;
    AllTargets targets(table);
    EXPECT_FALSE(store(table, VariableType::Uint8, "W", {1}));
    EXPECT_FALSE(store(table, VariableType::Uint8, "", {1}));
    EXPECT_EQ(targets.u8, 99);
}

TEST(VariableTableTest, DropsATypeThatTheNameHasNoTargetFor) {
    VariableTable table;
    float single = 0.5f;
    table.bind("PA_4", &single);
    EXPECT_FALSE(store(table, VariableType::Int32, "PA_4", {1, 0, 0, 0}));
    EXPECT_FALSE(store(table, VariableType::String, "PA_4", {'1'}));
    EXPECT_EQ(single, 0.5f);
}

TEST(VariableTableTest, TheHashIsThatOfTheCharactersInOrder) {
    EXPECT_EQ(VariableTable::hash(""), 0u);
    EXPECT_EQ(VariableTable::hash("A"), 65u);
    EXPECT_EQ(VariableTable::hash("AB"), 65u * 31 + 66);
    EXPECT_EQ(VariableTable::hash("\xFF"), 255u) << "characters have no sign";
    std::uint64_t wide = 0;
    for (const char c : std::string("PB2_AND_PB10"))
        wide = (wide * 31 + static_cast<unsigned char>(c)) % (std::uint64_t{1} << 32);
    EXPECT_EQ(VariableTable::hash("PB2_AND_PB10"), wide);
}

TEST(VariableTableTest, NamesThatShareABucketKeepTheirOwnValues) {
    VariableTable table;
    std::vector<std::string> names;
    for (int i = 0; names.size() < 20; ++i) {
        const std::string name = "N" + std::to_string(i);
        if (VariableTable::hash(name) % VariableTable::kBuckets == 7) names.push_back(name);
    }
    std::vector<std::uint8_t> values(names.size(), 0);
    for (std::size_t i = 0; i < names.size(); ++i)
        table.bind(names[i], &values[i]);
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_TRUE(store(table, VariableType::Uint8, names[i], {static_cast<std::uint8_t>(i + 1)}));
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(values[i], i + 1);
}

TEST(VariableTableTest, ASecondTargetTakesTheFirstOnesPlace) {
    VariableTable table;
    std::uint8_t first = 0;
    std::uint8_t second = 0;
    table.bind("V", &first);
    table.bind("V", &second);
    store(table, VariableType::Uint8, "V", {5});
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 5);
}

}  // namespace
