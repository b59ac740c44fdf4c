#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

#include "LogCapture.h"
#include "math/OneDli.h"

namespace {

constexpr double kRate = 44100.0;
constexpr float kTable[5][5] = {{1.0f, 2.0f, -3.0f, 100.0f, 1000.0f},
                                {1.5f, 0.0f, -2.0f, 150.0f, 1500.0f},
                                {4.0f, 1.0f, -2.5f, 90.0f, 3000.0f},
                                {4.5f, 1.5f, 7.0f, 80.0f, 4000.0f},
                                {0.5f, 9.0f, 1.0f, 300.0f, 8000.0f}};

double poleGain(double freqHz) {
    return 1.0 - std::exp(-2.0 * std::numbers::pi * freqHz / kRate);
}

// Row i mixed with row i + 1.
template <typename Result, typename Table>
void expectMix(const Result& result, const Table& table, int i, double fraction) {
    for (size_t k = 0; k < 5; ++k) {
        const bool isCorner = k >= 3;
        const double low = isCorner ? poleGain(table[i][k]) : table[i][k];
        const double high = isCorner ? poleGain(table[i + 1][k]) : table[i + 1][k];
        EXPECT_NEAR(result[k], low + (high - low) * fraction, 5e-6)
            << "value " << k << " at row " << i << " + " << fraction;
    }
}

TEST(OneDliTest, MixesNeighbouringRows) {
    const OneDli table(kTable, static_cast<float>(kRate));
    for (const double control : {0.0, 0.1, 0.25, 0.4, 0.6, 0.9, 1.0}) {
        const double position = control * 3.9999;
        expectMix(table.calc(static_cast<float>(control)), kTable, static_cast<int>(position),
                  position - std::floor(position));
    }
}

TEST(OneDliTest, ControlsOutOfRangeAreToldAndGiveTheNearerEnd) {
    const OneDli table(kTable, static_cast<float>(kRate));
    LogCapture log;
    expectMix(table.calc(1.5f), kTable, 3, 0.9999);
    expectMix(table.calc(-0.5f), kTable, 0, 0.0);
    expectMix(table.calc(std::nanf("")), kTable, 0, 0.0);
    EXPECT_EQ(log.count("Warn ctrl has invalid value = 1.500000"), 1);
    EXPECT_EQ(log.count("Warn ctrl has invalid value = -0.500000"), 1);
    EXPECT_EQ(log.lines().size(), 3u);
}

TEST(OneDliTest, BothEndsThemselvesAreInRange) {
    const OneDli table(kTable, static_cast<float>(kRate));
    LogCapture log;
    table.calc(0.0f);
    table.calc(1.0f);
    EXPECT_TRUE(log.lines().empty());
}

TEST(OneDliNTest, HasTheSameLogicOverAnyNumberOfRows) {
    const double rows[3][5] = {
        {1.0, 2.0, 3.0, 50.0, 500.0}, {2.0, 0.0, 3.0, 75.0, 250.0}, {9.0, 1.0, 0.0, 10.0, 5.0}};
    const OneDliN table(rows, 3, kRate);
    for (const double control : {0.0, 0.3, 0.5, 0.8, 1.0}) {
        const double position = control * 1.9999;
        expectMix(table.calc(control), rows, static_cast<int>(position), position - std::floor(position));
    }
    LogCapture log;
    expectMix(table.calc(2.0), rows, 1, 0.9999);
    expectMix(table.calc(-1.0), rows, 0, 0.0);
    EXPECT_EQ(log.lines().size(), 2u);
}

}  // namespace
