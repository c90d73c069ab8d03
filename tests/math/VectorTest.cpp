#include "MathTestUtil.h"

#include <cstdint>
#include <cstring>
#include <limits>

using namespace math;
using mathtest::Near;

namespace
{
float FloatFromBits(uint32_t bits)
{
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}
double DoubleFromBits(uint64_t bits)
{
    double d;
    std::memcpy(&d, &bits, sizeof d);
    return d;
}
} // namespace

TEST(Vector, NormalizeReturnsOldLengthAndZeroesTinyVectors)
{
    Vec2 v(3, -4);
    EXPECT_FLOAT_EQ(5, v.Normalize());
    EXPECT_TRUE(Near(Vec2(0.6f, -0.8f), v));

    // Length about 7e-8: below the zero threshold, so no direction.
    Vec2 tiny(5e-8f, -5e-8f);
    EXPECT_EQ(0, tiny.Normalize());
    EXPECT_EQ(Vec2(0, 0), tiny);

    Vec2 zero(0, 0);
    EXPECT_EQ(0, zero.Normalize());
    EXPECT_EQ(Vec2(0, 0), zero);

    // Just above the threshold the direction survives.
    Vec2 small(2e-7f, 0);
    EXPECT_FLOAT_EQ(2e-7f, small.Normalize());
    EXPECT_EQ(Vec2(1, 0), small);

    Vec3 v3(0, 0, -2);
    EXPECT_FLOAT_EQ(2, v3.Normalize());
    EXPECT_EQ(Vec3(0, 0, -1), v3);
}

TEST(MathUtil, IsZeroThresholdDependsOnPrecision)
{
    EXPECT_TRUE(IsZero(0.0f));
    EXPECT_TRUE(IsZero(-9e-8f));
    EXPECT_FALSE(IsZero(1e-7f));
    EXPECT_FALSE(IsZero(1e-9));
    EXPECT_TRUE(IsZero(-9e-12));
    EXPECT_FALSE(IsZero(1e-11));
}

TEST(MathUtil, WrapAngleLandsAboveMinusPiUpToPi)
{
    EXPECT_EQ(0, WrapAngle(INF));
    EXPECT_EQ(0, WrapAngle(-INF));
    EXPECT_EQ(0, WrapAngle(std::numeric_limits<float>::quiet_NaN()));
    EXPECT_EQ(PIf, WrapAngle(PIf));
    EXPECT_EQ(PIf, WrapAngle(-PIf));
    EXPECT_EQ(0, WrapAngle(0));
    EXPECT_FLOAT_EQ(0.5f, WrapAngle(0.5f));
    EXPECT_FLOAT_EQ(-0.5f, WrapAngle(-0.5f));

    for (float a = -40; a <= 40; a += 0.37f)
    {
        const float w = WrapAngle(a);
        EXPECT_GT(w, -PIf) << a;
        EXPECT_LE(w, PIf) << a;
        EXPECT_NEAR(std::cos(a), std::cos(w), 2e-5f) << a;
        EXPECT_NEAR(std::sin(a), std::sin(w), 2e-5f) << a;
    }
}

TEST(MathUtil, NaNAndFinitenessFollowTheBitPatterns)
{
    EXPECT_TRUE(IsNaN(FloatFromBits(0x7FC00000u)));
    EXPECT_TRUE(IsNaN(FloatFromBits(0x7FA00000u)));
    EXPECT_TRUE(IsNaN(FloatFromBits(0xFFC00000u)));
    EXPECT_TRUE(IsNaN(DoubleFromBits(0x7FF8000000000000ull)));
    EXPECT_TRUE(IsNaN(DoubleFromBits(0x7FF4000000000000ull)));
    EXPECT_FALSE(IsNaN(INF));
    EXPECT_FALSE(IsNaN(-INF));
    EXPECT_FALSE(IsNaN(std::numeric_limits<float>::max()));
    EXPECT_FALSE(IsNaN(0.0));

    EXPECT_FALSE(IsFiniteFloat(INF));
    EXPECT_FALSE(IsFiniteFloat(-INF));
    EXPECT_FALSE(IsFiniteFloat(FloatFromBits(0x7FC00000u)));
    EXPECT_FALSE(IsFiniteFloat(FloatFromBits(0xFF800001u)));
    EXPECT_TRUE(IsFiniteFloat(std::numeric_limits<float>::max()));
    EXPECT_TRUE(IsFiniteFloat(-std::numeric_limits<float>::denorm_min()));
    EXPECT_TRUE(IsFiniteFloat(0.0f));

    EXPECT_TRUE(IsFinite(Vec2(1, -1e30f)));
    EXPECT_FALSE(IsFinite(Vec2(1, -INF)));
    EXPECT_FALSE(IsFinite(Vec2(std::numeric_limits<float>::quiet_NaN(), 0)));
    // Infinities pass through arithmetic untouched.
    EXPECT_FALSE(IsFinite(Vec2(1, 1) * INF));
}
