#include "flowmere/foundation/TuTypes.h"

#include <gtest/gtest.h>

#include <type_traits>

TEST(TuTypes, NewPointsAndRectanglesAreZero) {
    TuRect const rect;
    EXPECT_EQ(rect.left, 0);
    EXPECT_EQ(rect.top, 0);
    EXPECT_EQ(rect.right, 0);
    EXPECT_EQ(rect.bottom, 0);
    _TgPointLStr const point;
    EXPECT_EQ(point.x, 0);
    EXPECT_EQ(point.y, 0);
    _TgPoint2Str const point2;
    EXPECT_EQ(point2.x, 0.0);
    EXPECT_EQ(point2.y, 0.0);
    _TgPoint3Str const point3;
    EXPECT_EQ(point3.x, 0.0);
    EXPECT_EQ(point3.y, 0.0);
    EXPECT_EQ(point3.z, 0.0);
}

TEST(TuTypes, AreFilledInOrder) {
    TuRect const rect{1, 2, 3, 4};
    EXPECT_EQ(rect.left, 1);
    EXPECT_EQ(rect.top, 2);
    EXPECT_EQ(rect.right, 3);
    EXPECT_EQ(rect.bottom, 4);
    _TgPoint3Str const point{1.0, 2.0, 3.0};
    EXPECT_EQ(point.x, 1.0);
    EXPECT_EQ(point.y, 2.0);
    EXPECT_EQ(point.z, 3.0);
}

TEST(TuTypes, IntegersAreOf32Bits) {
    EXPECT_EQ(sizeof(TuRect), 16U);
    EXPECT_EQ(sizeof(_TgPointLStr), 8U);
    EXPECT_EQ(sizeof(_TgPoint2Str), 16U);
    EXPECT_EQ(sizeof(_TgPoint3Str), 24U);
}

TEST(TuTypes, EnumerationsHoldAnyInt) {
    static_assert(std::is_same_v<std::underlying_type_t<_TuMessageType>, int>);
    static_assert(std::is_same_v<std::underlying_type_t<_TMemoryUnitId>, int>);
    EXPECT_EQ(static_cast<int>(TuMessageOrdinary), 0);
    EXPECT_EQ(static_cast<int>(TMemoryUnitDefault), 1);
    EXPECT_EQ(static_cast<int>(static_cast<_TMemoryUnitId>(77)), 77);
}
