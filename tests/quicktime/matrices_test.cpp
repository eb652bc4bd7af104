#include "platform/quicktime/matrices.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

constexpr Fixed kOne = 1 << 16;

struct Place {
    double x;
    double y;
};

Place Map(const MatrixRecord& map, double x, double y) {
    const auto& m = map.matrix;
    const auto at = [&](std::size_t column, double unit) {
        return (m[0][column] * x + m[1][column] * y + m[2][column]) / unit;
    };
    const double q = at(2, 1 << 30);
    return {at(0, kOne) / q, at(1, kOne) / q};
}

void ExpectNear(const Place& place, double x, double y, double tolerance, const char* what) {
    EXPECT_NEAR(place.x, x, tolerance) << what;
    EXPECT_NEAR(place.y, y, tolerance) << what;
}

TEST(Matrices, NumbersBecomeTheNearestFixedPoint) {
    EXPECT_EQ(X2Fix(1.0 + 0.4 / 65'536), kOne);
    EXPECT_EQ(X2Fix(1.0 + 0.6 / 65'536), kOne + 1);
    EXPECT_EQ(X2Fix(-1.0 - 0.6 / 65'536), -kOne - 1);
    EXPECT_EQ(X2Fix(1e300), std::numeric_limits<Fixed>::max());
    EXPECT_EQ(X2Fix(-40'000.0), std::numeric_limits<Fixed>::min());
    EXPECT_EQ(X2Fix(std::nan("")), 0);
}

// The expected elements come from exact fractions, rounded once a step.
TEST(Matrices, StepsAreExactButForOneRounding) {
    MatrixRecord map = kIdentityMatrix;
    RotateMatrix(&map, X2Fix(33.3), 0, 0);
    SkewMatrix(&map, X2Fix(0.3), X2Fix(-0.7), 0, 0);
    ScaleMatrix(&map, X2Fix(1.7), X2Fix(0.123), 0, 0);
    RotateMatrix(&map, X2Fix(-271), 0, 0);
    ScaleMatrix(&map, X2Fix(-2.5), X2Fix(3.3), 0, 0);
    EXPECT_EQ(map, (MatrixRecord{{{{-5590, 367'769, 0}, {26'035, -109'082, 0}, {0, 0, 1 << 30}}}}));

    map = {{{{3 * kOne + 5, -77'777, 123'456'789},
             {4242, -99'999, -87'654'321},
             {1'234'567, -7'654'321, (1 << 30) - 5}}}};
    const MatrixRecord next = {
        {{{-12'345, 67'890, -234'567}, {98'765, 43'210, 345'678}, {-777'777, 888'888, (1 << 30) / 3}}}};
    ConcatMatrix(&next, &map);
    EXPECT_EQ(map, (MatrixRecord{{{{-243'676, 254'597, 40'038'299},
                                   {-88'008, -134'102, -29'760'747},
                                   {-12'545'656, -2'878'941, 313'121'473}}}}));
}

TEST(Matrices, TurnsGoClockwiseAboutTheirPointAndBack) {
    MatrixRecord map = kIdentityMatrix;
    RotateMatrix(&map, 90 * kOne, 10 * kOne, 20 * kOne);
    ExpectNear(Map(map, 11, 20), 10, 21, 1e-9, "right becomes down");
    SkewMatrix(&map, kOne / 2, 0, 0, 20 * kOne);
    ExpectNear(Map(map, 11, 20), 10.5, 21, 1e-9, "a row below the line moves right by a half");
    map = kIdentityMatrix;
    RotateMatrix(&map, 30 * kOne, 0, 0);
    RotateMatrix(&map, -30 * kOne, 0, 0);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_LE(std::abs(map.matrix[i / 2][i % 2] - kIdentityMatrix.matrix[i / 2][i % 2]), 2);
}

TEST(Matrices, WhatOverflowsStaysTheSameMapping) {
    MatrixRecord map = kIdentityMatrix;
    ScaleMatrix(&map, 30'000 * kOne, -20'000 * kOne, 0, 0);
    ScaleMatrix(&map, 8 * kOne, 8 * kOne, 0, 0);
    ExpectNear(Map(map, 1, 1), 240'000, -160'000, 20, "above the range of 16.16");
    ScaleMatrix(&map, X2Fix(1 / 16.0), X2Fix(1 / 16.0), 0, 0);
    ExpectNear(Map(map, 1, 1), 15'000, -10'000, 2, "back in it");
    for (int i = 0; i < 4; ++i) ScaleMatrix(&map, 32'000 * kOne, 32'000 * kOne, 0, 0);
    EXPECT_EQ(map.matrix[2][2], 0) << "no number is left for points";
}

TEST(Matrices, QuadsGoToQuads) {
    const auto at = [](double x, double y) { return FixedPoint{X2Fix(x), X2Fix(y)}; };
    const FixedPoint source[4] = {at(0, 0), at(4000, 0), at(4000, 3000), at(0, 3000)};
    const double corners[4][2] = {{12.5, 3}, {3900, 600}, {3200, 2999}, {400, 2100}};
    FixedPoint destination[4];
    for (int i = 0; i < 4; ++i) destination[i] = at(corners[i][0], corners[i][1]);
    MatrixRecord map = kIdentityMatrix;
    ASSERT_EQ(QuadToQuadMatrix(source, destination, &map), noErr);
    for (int i = 0; i < 4; ++i) {
        const Place place = Map(map, source[i].x / double{kOne}, source[i].y / double{kOne});
        ExpectNear(place, corners[i][0], corners[i][1], 0.1, "a corner");
    }
    const FixedPoint turned[4] = {at(3000, 0), at(3000, 4000), at(0, 4000), at(0, 0)};
    ASSERT_EQ(QuadToQuadMatrix(source, turned, &map), noErr);
    EXPECT_EQ(map, (MatrixRecord{{{{0, kOne, 0}, {-kOne, 0, 0}, {3000 * kOne, 0, 1 << 30}}}}));
}

TEST(Matrices, QuadsWithCornersInALineAreRefused) {
    const FixedPoint square[4] = {{0, 0}, {kOne, 0}, {kOne, kOne}, {0, kOne}};
    const FixedPoint line[4] = {{0, 0}, {kOne, kOne}, {2 * kOne, 2 * kOne}, {0, kOne}};
    const FixedPoint point[4] = {};
    MatrixRecord map = kIdentityMatrix;
    EXPECT_EQ(QuadToQuadMatrix(square, line, &map), paramErr);
    EXPECT_EQ(QuadToQuadMatrix(line, square, &map), paramErr);
    EXPECT_EQ(QuadToQuadMatrix(square, point, &map), paramErr);
    EXPECT_EQ(map, kIdentityMatrix);
}

} // namespace
