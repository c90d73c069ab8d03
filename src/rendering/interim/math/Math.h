#pragma once

// INTERIM STAND-IN for the math library, which is built on its own branch. Only the few operations that
// rendering and the camera use are here, under the names the real library has. The build picks this folder
// up only while src/math/Math.h does not exist; delete the folder when it does.

#include <GL/glew.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace math
{
using real = float;
constexpr double PI = 3.14159265358979323846;
constexpr float PIf = 3.14159265f;
constexpr float INF = std::numeric_limits<float>::infinity();

inline bool IsZero(float x)
{
    return std::fabs(x) < 1e-7f;
}
inline bool IsNaN(float x)
{
    return x != x;
}
inline bool IsFiniteFloat(float x)
{
    return std::isfinite(x);
}

template <class T> struct TVector2
{
    T x{}, y{};
    TVector2() = default;
    TVector2(T x_, T y_) : x(x_), y(y_) {}
    template <class U> explicit TVector2(const TVector2<U>& o) : x(T(o.x)), y(T(o.y)) {}
    TVector2 operator+(const TVector2& o) const { return {x + o.x, y + o.y}; }
    TVector2 operator-(const TVector2& o) const { return {x - o.x, y - o.y}; }
    TVector2 operator-() const { return {-x, -y}; }
    TVector2 operator*(T s) const { return {x * s, y * s}; }
    TVector2 operator/(T s) const { return {x / s, y / s}; }
    TVector2& operator+=(const TVector2& o)
    {
        x += o.x;
        y += o.y;
        return *this;
    }
    TVector2& operator-=(const TVector2& o)
    {
        x -= o.x;
        y -= o.y;
        return *this;
    }
    TVector2& operator*=(T s)
    {
        x *= s;
        y *= s;
        return *this;
    }
    bool operator==(const TVector2& o) const { return x == o.x && y == o.y; }
    bool operator!=(const TVector2& o) const { return !(*this == o); }
    T operator*(const TVector2& o) const { return x * o.x + y * o.y; }
    T& operator[](int i) { return i == 0 ? x : y; }
    const T& operator[](int i) const { return i == 0 ? x : y; }
    T Length() const { return T(std::sqrt(x * x + y * y)); }
    T LengthSq() const { return x * x + y * y; }
    const T* GetPtr() const { return &x; }
};
template <class T> TVector2<T> operator*(T s, const TVector2<T>& v)
{
    return v * s;
}
template <class T> TVector2<T> Mul(const TVector2<T>& a, const TVector2<T>& b)
{
    return {a.x * b.x, a.y * b.y};
}
template <class T> TVector2<T> Div(const TVector2<T>& a, const TVector2<T>& b)
{
    return {a.x / b.x, a.y / b.y};
}
template <class T> TVector2<T> Abs(const TVector2<T>& a)
{
    return {std::fabs(a.x), std::fabs(a.y)};
}
template <class T> TVector2<T> Min(const TVector2<T>& a, const TVector2<T>& b)
{
    return {a.x < b.x ? a.x : b.x, a.y < b.y ? a.y : b.y};
}
template <class T> TVector2<T> Max(const TVector2<T>& a, const TVector2<T>& b)
{
    return {a.x > b.x ? a.x : b.x, a.y > b.y ? a.y : b.y};
}
using Vec2 = TVector2<float>;
inline bool IsFinite(const Vec2& v)
{
    return IsFiniteFloat(v.x) && IsFiniteFloat(v.y);
}
inline float Distance(const Vec2& a, const Vec2& b)
{
    return (a - b).Length();
}
inline float DistanceSq(const Vec2& a, const Vec2& b)
{
    return (a - b).LengthSq();
}

template <class T> struct TVector3
{
    T x{}, y{}, z{};
    TVector3() = default;
    TVector3(T x_, T y_, T z_) : x(x_), y(y_), z(z_) {}
    TVector3 operator+(const TVector3& o) const { return {x + o.x, y + o.y, z + o.z}; }
    TVector3 operator-(const TVector3& o) const { return {x - o.x, y - o.y, z - o.z}; }
    TVector3 operator*(T s) const { return {x * s, y * s, z * s}; }
    bool operator==(const TVector3& o) const { return x == o.x && y == o.y && z == o.z; }
    bool operator!=(const TVector3& o) const { return !(*this == o); }
    T Length() const { return T(std::sqrt(x * x + y * y + z * z)); }
    const T* GetPtr() const { return &x; }
};
template <class T> TVector3<T> Mul(const TVector3<T>& a, const TVector3<T>& b)
{
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}
using Vec3 = TVector3<float>;

template <class T> struct TVector4
{
    T x{}, y{}, z{}, w{};
    TVector4() = default;
    TVector4(T x_, T y_, T z_, T w_) : x(x_), y(y_), z(z_), w(w_) {}
    bool operator==(const TVector4& o) const { return x == o.x && y == o.y && z == o.z && w == o.w; }
    bool operator!=(const TVector4& o) const { return !(*this == o); }
    const T* GetPtr() const { return &x; }
};
template <class T> TVector4<T> Mul(const TVector4<T>& a, const TVector4<T>& b)
{
    return {a.x * b.x, a.y * b.y, a.z * b.z, a.w * b.w};
}
using Vec4 = TVector4<float>;

// Row-major, used with column vectors: a plane translation lies in elements 2 and 5.
template <class T> struct TMatrix3
{
    T m[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    T& operator[](int i) { return m[i]; }
    const T& operator[](int i) const { return m[i]; }
    T& operator()(int row, int column) { return m[row * 3 + column]; }
    const T& operator()(int row, int column) const { return m[row * 3 + column]; }
    static TMatrix3 Translation2D(const TVector2<T>& v)
    {
        TMatrix3 r;
        r.m[2] = v.x;
        r.m[5] = v.y;
        return r;
    }
    static TMatrix3 Scale2D(const TVector2<T>& s)
    {
        TMatrix3 r;
        r.m[0] = s.x;
        r.m[4] = s.y;
        return r;
    }
    TMatrix3 operator*(const TMatrix3& o) const
    {
        TMatrix3 r;
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                r.m[3 * i + j] = m[3 * i] * o.m[j] + m[3 * i + 1] * o.m[3 + j] + m[3 * i + 2] * o.m[6 + j];
        return r;
    }
    bool operator==(const TMatrix3& o) const { return std::memcmp(m, o.m, sizeof m) == 0; }
};

template <class T> TMatrix3<T> Inverted(const TMatrix3<T>& a)
{
    const T* m = a.m;
    const T det = m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) +
                  m[2] * (m[3] * m[7] - m[4] * m[6]);
    TMatrix3<T> r;
    r.m[0] = (m[4] * m[8] - m[5] * m[7]) / det;
    r.m[1] = (m[2] * m[7] - m[1] * m[8]) / det;
    r.m[2] = (m[1] * m[5] - m[2] * m[4]) / det;
    r.m[3] = (m[5] * m[6] - m[3] * m[8]) / det;
    r.m[4] = (m[0] * m[8] - m[2] * m[6]) / det;
    r.m[5] = (m[2] * m[3] - m[0] * m[5]) / det;
    r.m[6] = (m[3] * m[7] - m[4] * m[6]) / det;
    r.m[7] = (m[1] * m[6] - m[0] * m[7]) / det;
    r.m[8] = (m[0] * m[4] - m[1] * m[3]) / det;
    return r;
}

template <class T> TVector2<T> TransformCoordinate(const TMatrix3<T>& a, const TVector2<T>& p)
{
    const T* m = a.m;
    const T z = m[6] * p.x + m[7] * p.y + m[8];
    return {(m[0] * p.x + m[1] * p.y + m[2]) / z, (m[3] * p.x + m[4] * p.y + m[5]) / z};
}

template <class T> TVector2<T> TransformDirection(const TMatrix3<T>& a, const TVector2<T>& d)
{
    return TransformCoordinate(a, d) - TransformCoordinate(a, TVector2<T>(0, 0));
}

template <class T> struct TMatrix4
{
    T m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    // Row-major here, column-major in GL: the transpose goes over.
    void MultToGL() const
    {
        float t[16];
        for (int i = 0; i < 4; ++i)
            for (int j = 0; j < 4; ++j)
                t[4 * j + i] = float(m[4 * i + j]);
        glMultMatrixf(t);
    }
};

// A plane transform widened for the graphics interface: z passes through untouched.
inline TMatrix4<float> Mat4FromMat2D(const TMatrix3<float>& a)
{
    TMatrix4<float> r;
    r.m[0] = a.m[0];
    r.m[1] = a.m[1];
    r.m[3] = a.m[2];
    r.m[4] = a.m[3];
    r.m[5] = a.m[4];
    r.m[7] = a.m[5];
    r.m[12] = a.m[6];
    r.m[13] = a.m[7];
    r.m[15] = a.m[8];
    return r;
}

template <class T, int N, class V> struct BoundingBox
{
    V min, max;
    BoundingBox() = default;
    BoundingBox(const V& a, const V& b) : min(a), max(b) {}
    static BoundingBox Empty() { return BoundingBox(V(INF, INF), V(-INF, -INF)); }
    void Include(const V& p)
    {
        min = Min(min, p);
        max = Max(max, p);
    }
    V GetCenter() const { return (min + max) * T(0.5); }
    V GetSize() const { return max - min; }
    bool IsFinite() const { return math::IsFinite(min) && math::IsFinite(max); }
    bool Contains(const V& p) const { return min.x <= p.x && p.x <= max.x && min.y <= p.y && p.y <= max.y; }
};

} // namespace math
