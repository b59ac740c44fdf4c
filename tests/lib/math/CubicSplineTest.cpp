#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "math/CubicSpline.h"

namespace {

// Section i is its own polynomial, so that a wrong section shows.
template <int N, typename T>
struct Table {
    T rows[N - 1][4];
    Table() {
        for (int i = 0; i < N - 1; ++i) {
            for (int k = 0; k < 4; ++k)
                rows[i][k] = static_cast<T>(std::sin(1.0 + 3.0 * i + 7.0 * k));
        }
    }
    double eval(int section, double x) const {
        double y = 0.0;
        for (int k = 0; k < 4; ++k)
            y += static_cast<double>(rows[section][k]) * std::pow(x, 3 - k);
        return y;
    }
};

template <typename T>
class CubicSplineTest : public testing::Test {};
using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(CubicSplineTest, Precisions);

TYPED_TEST(CubicSplineTest, EvaluatesTheSectionThatXLiesInAtAbsoluteX) {
    using T = TypeParam;
    const Table<12, T> table;
    const CubicSpline<12, T> spline(table.rows, T(2.5), T(-1), T(3), 0, 10);
    for (int i = 0; i < 11; ++i) {
        for (const double part : {0.01, 0.5, 0.99}) {
            const double x = -1.0 + 4.0 * (i + part) / 11.0;
            EXPECT_NEAR(spline.eval(static_cast<T>(x)), 2.5 * table.eval(i, x), 1e-4) << x;
        }
    }
}

TYPED_TEST(CubicSplineTest, TheUpperEndBelongsToTheLastSection) {
    using T = TypeParam;
    const Table<12, T> table;
    const CubicSpline<12, T> spline(table.rows, T(1), T(-1), T(3), 4, 5);
    EXPECT_NEAR(spline.eval(T(3)), table.eval(10, 3.0), 1e-4);
    EXPECT_NEAR(spline.eval(T(-1)), table.eval(0, -1.0), 1e-5);
}

TYPED_TEST(CubicSplineTest, OutOfRangeTheEndSectionsGoOn) {
    using T = TypeParam;
    const Table<12, T> table;
    const CubicSpline<12, T> spline(table.rows, T(1), T(-1), T(3), 2, 7);
    for (const double x : {3.01, 4.0, 9.0}) {
        EXPECT_NEAR(spline.eval(static_cast<T>(x)), table.eval(7, x), 1e-6 * std::abs(x * x * x) + 1e-5) << x;
    }
    for (const double x : {-1.01, -2.0, -9.0}) {
        EXPECT_NEAR(spline.eval(static_cast<T>(x)), table.eval(2, x), 1e-6 * std::abs(x * x * x) + 1e-5) << x;
    }
}

TYPED_TEST(CubicSplineTest, ABlockIsItsSamplesAlsoInPlace) {
    using T = TypeParam;
    const Table<512, T> table;
    const CubicSpline<512, T> spline(table.rows, T(0.5), T(-2), T(2), 0, 510);
    const ICubicSpline<T>& any = spline;
    std::vector<T> in(301);
    for (size_t i = 0; i < in.size(); ++i)
        in[i] = static_cast<T>(-2.3 + 4.6 * static_cast<double>(i) / 300.0);
    std::vector<T> out(in.size());
    any.eval(in.data(), out.data(), static_cast<int>(in.size()));
    for (size_t i = 0; i < in.size(); ++i)
        EXPECT_EQ(out[i], any.eval(in[i]));
    any.eval(in.data(), in.data(), static_cast<int>(in.size()));
    EXPECT_EQ(in, out);
}

TYPED_TEST(CubicSplineTest, ANotANumberStaysOneAndReadsNoForeignMemory) {
    using T = TypeParam;
    const Table<12, T> table;
    const CubicSpline<12, T> spline(table.rows, T(1), T(-1), T(3), 0, 10);
    EXPECT_TRUE(std::isnan(spline.eval(std::numeric_limits<T>::quiet_NaN())));
}

}  // namespace
