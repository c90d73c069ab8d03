#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

namespace math
{

// The scalar of the simulation.
typedef float real;

constexpr double PI = 3.14159265358979323846;
constexpr float PIf = 3.14159265358979323846f;
constexpr float INF = std::numeric_limits<float>::infinity();

// Values this close to zero count as zero: far below anything the simulation measures, but above the
// rounding noise of one operation on numbers near 1.
constexpr float ZERO_EPSILON_F = 1e-7f;
constexpr double ZERO_EPSILON_D = 1e-11;

inline bool IsZero(float x)
{
    return std::fabs(x) < ZERO_EPSILON_F;
}
inline bool IsZero(double x)
{
    return std::fabs(x) < ZERO_EPSILON_D;
}
template <class T, class = std::enable_if_t<std::is_integral<T>::value>> inline bool IsZero(T x)
{
    return x == 0;
}

namespace detail
{
inline uint32_t FloatBits(float x)
{
    uint32_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    return bits;
}
inline uint64_t DoubleBits(double x)
{
    uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    return bits;
}

constexpr uint32_t FLOAT_QUIET_NAN = 0x7FC00000u;
constexpr uint32_t FLOAT_SIGNALLING_NAN = 0x7FA00000u;
constexpr uint64_t DOUBLE_QUIET_NAN = 0x7FF8000000000000ull;
constexpr uint64_t DOUBLE_SIGNALLING_NAN = 0x7FF4000000000000ull;
constexpr uint32_t FLOAT_EXPONENT_MASK = 0x7F800000u;
constexpr uint64_t DOUBLE_EXPONENT_MASK = 0x7FF0000000000000ull;
} // namespace detail

// The byte comparison keeps the test meaningful where floating-point optimisation folds "x != x" to false.
inline bool IsNaN(float x)
{
    const uint32_t bits = detail::FloatBits(x);
    return x != x || bits == detail::FLOAT_QUIET_NAN || bits == detail::FLOAT_SIGNALLING_NAN;
}
inline bool IsNaN(double x)
{
    const uint64_t bits = detail::DoubleBits(x);
    return x != x || bits == detail::DOUBLE_QUIET_NAN || bits == detail::DOUBLE_SIGNALLING_NAN;
}

// All-ones exponent bits are exactly the infinities and the NaNs.
inline bool IsFiniteFloat(float x)
{
    return (detail::FloatBits(x) & detail::FLOAT_EXPONENT_MASK) != detail::FLOAT_EXPONENT_MASK;
}
inline bool IsFiniteFloat(double x)
{
    return (detail::DoubleBits(x) & detail::DOUBLE_EXPONENT_MASK) != detail::DOUBLE_EXPONENT_MASK;
}
inline bool IsFinite(float x)
{
    return IsFiniteFloat(x);
}
inline bool IsFinite(double x)
{
    return IsFiniteFloat(x);
}

// An angle in radians brought into (-PIf, PIf]. A non-finite angle has no meaningful direction: 0.
inline float WrapAngle(float a)
{
    if (!IsFiniteFloat(a))
        return 0.0f;
    const float turn = 2.0f * PIf;
    a = std::fmod(a, turn);
    while (a <= -PIf)
        a += turn;
    while (a > PIf)
        a -= turn;
    return a;
}

// Significant digits that make a number written to text read back to the same value.
template <class T> int GetPrecisionOf();
template <> inline int GetPrecisionOf<float>()
{
    return 8;
}
template <> inline int GetPrecisionOf<double>()
{
    return 17;
}

// Works for scalars and for every vector type: t = 0 gives a, t = 1 gives b.
template <class V, class S> inline V Lerp(const V& a, const V& b, S t)
{
    return t * b + (S(1) - t) * a;
}

template <class T> inline T Clamp(T x, T lo, T hi)
{
    return x < lo ? lo : (hi < x ? hi : x);
}

} // namespace math
