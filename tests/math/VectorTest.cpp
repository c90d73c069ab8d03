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
uint32_t BitsOf(float f)
{
    uint32_t bits;
    std::memcpy(&bits, &f, sizeof bits);
    return bits;
}
} // namespace

TEST(MathConstants, HaveTheirExactBitsAndPrecisions)
{
    EXPECT_EQ(0x40490FDBu, BitsOf(PIf));
    EXPECT_EQ(0x7F800000u, BitsOf(INF));
    EXPECT_EQ(PIf, float(PI));
    EXPECT_EQ(8, GetPrecisionOf<float>());
    EXPECT_EQ(17, GetPrecisionOf<double>());
}

TEST(Vector, ArithmeticMixesScalarTypesAndIsComponentWise)
{
    const Vec2 a(1, 2), b(3, -4);
    EXPECT_EQ(Vec2(4, -2), a + b);
    EXPECT_EQ(Vec2(-2, 6), a - b);
    EXPECT_EQ(Vec2(-1, -2), -a);
    EXPECT_EQ(Vec2(2, 4), a * 2);
    EXPECT_EQ(Vec2(0.5f, 1), 0.5 * a);
    EXPECT_EQ(Vec2(0.5f, 1), a / 2);
    EXPECT_EQ(Vec2(6, 3), 6.0f / a);
    EXPECT_EQ(Vec2(3, -8), Mul(a, b));
    EXPECT_EQ(Vec2(3, -2), Div(b, a));
    EXPECT_EQ(Vec2(1, -4), Min(a, b));
    EXPECT_EQ(Vec2(3, 2), Max(a, b));
    EXPECT_FLOAT_EQ(-5, Dot(a, b));
    EXPECT_FLOAT_EQ(25, DistanceSq(Vec2(0, 0), b));
    EXPECT_FLOAT_EQ(5, Distance(Vec2(0, 0), b));
    EXPECT_TRUE(a != b);
    EXPECT_FALSE(a == b);

    Vec2 c = a;
    c += b;
    c -= Vec2(1, 1);
    c *= 2;
    c /= 4;
    EXPECT_EQ(Vec2(1.5f, -1.5f), c);

    // Pixel sizes and grid cells.
    TVector2<int> cell(7, -3);
    EXPECT_EQ(TVector2<int>(3, -1), cell / 2);
    EXPECT_EQ(TVector2<unsigned int>(4, 6), TVector2<unsigned int>(2, 3) * 2u);
    EXPECT_EQ(Vec2(7, -3), Vec2(cell));
    const TVector4<unsigned char> pixel(255, 0, 128, 255);
    EXPECT_EQ(128, pixel.z);

    EXPECT_EQ(Vec3(-3, 6, -3), Cross(Vec3(1, 2, 3), Vec3(4, 5, 6)));
    EXPECT_EQ(Vec4(2, 4, 6, 8), Vec4(1, 2, 3, 4) * 2);
    EXPECT_FLOAT_EQ(30, Dot(Vec4(1, 2, 3, 4), Vec4(1, 2, 3, 4)));
}

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

TEST(Vector, CrossRotationAndLerpFollowTheirFormulas)
{
    const Vec2 a(2, 3), b(-1, 5);
    EXPECT_FLOAT_EQ(13, Cross(a, b));
    EXPECT_FLOAT_EQ(-13, Cross(b, a));
    EXPECT_EQ(Vec2(-6, 4), Cross(2.0f, a));
    EXPECT_EQ(Vec2(6, -4), Cross(a, 2.0f));
    EXPECT_EQ(Vec2(-3, 2), Rot90CCW(a));
    EXPECT_EQ(Vec2(3, -2), Rot90CW(a));
    EXPECT_EQ(a, Rot90CW(Rot90CCW(a)));
    // Counter-clockwise: the cross product of v and its turn is positive.
    EXPECT_GT(Cross(a, Rot90CCW(a)), 0);

    EXPECT_EQ(a, Lerp(a, b, 0.0f));
    EXPECT_EQ(b, Lerp(a, b, 1.0f));
    EXPECT_TRUE(Near(Vec2(0.5f, 4), Lerp(a, b, 0.5f)));
    EXPECT_FLOAT_EQ(12.5f, Lerp(10.0f, 20.0f, 0.25f));
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
