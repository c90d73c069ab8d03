#pragma once

#include "math/MathUtil.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace math
{

// Small value vectors. The arithmetic operators are hidden friends, so a scalar of another type (an int,
// a double literal) converts to T instead of failing template deduction.

template <class T> struct TVector2
{
    T x = T();
    T y = T();

    TVector2() = default;
    TVector2(T x_, T y_) : x(x_), y(y_) {}
    template <class U> explicit TVector2(const TVector2<U>& v) : x(T(v.x)), y(T(v.y)) {}

    void Set(T x_, T y_)
    {
        x = x_;
        y = y_;
    }

    T& operator[](int i) { return (&x)[i]; }
    const T& operator[](int i) const { return (&x)[i]; }
    T* GetPtr() { return &x; }
    const T* GetPtr() const { return &x; }

    T Dot(const TVector2& v) const { return x * v.x + y * v.y; }
    T LengthSq() const { return x * x + y * y; }
    T Length() const { return T(std::sqrt(LengthSq())); }

    // Makes the vector unit length and returns the length it had. A vector too short to have a
    // direction becomes (0, 0) and gives 0.
    T Normalize()
    {
        const T length = Length();
        if (IsZero(length))
        {
            x = y = T(0);
            return T(0);
        }
        x /= length;
        y /= length;
        return length;
    }
    TVector2 GetNormalized() const
    {
        TVector2 v = *this;
        v.Normalize();
        return v;
    }

    TVector2& operator+=(const TVector2& v)
    {
        x += v.x;
        y += v.y;
        return *this;
    }
    TVector2& operator-=(const TVector2& v)
    {
        x -= v.x;
        y -= v.y;
        return *this;
    }
    TVector2& operator*=(T s)
    {
        x *= s;
        y *= s;
        return *this;
    }
    TVector2& operator/=(T s)
    {
        x /= s;
        y /= s;
        return *this;
    }

    friend TVector2 operator+(const TVector2& a, const TVector2& b) { return TVector2(a.x + b.x, a.y + b.y); }
    friend TVector2 operator-(const TVector2& a, const TVector2& b) { return TVector2(a.x - b.x, a.y - b.y); }
    friend TVector2 operator-(const TVector2& a) { return TVector2(-a.x, -a.y); }
    friend TVector2 operator*(const TVector2& a, T s) { return TVector2(a.x * s, a.y * s); }
    friend TVector2 operator*(T s, const TVector2& a) { return TVector2(s * a.x, s * a.y); }
    friend TVector2 operator/(const TVector2& a, T s) { return TVector2(a.x / s, a.y / s); }
    friend TVector2 operator/(T s, const TVector2& a) { return TVector2(s / a.x, s / a.y); }
    friend bool operator==(const TVector2& a, const TVector2& b) { return a.x == b.x && a.y == b.y; }
    friend bool operator!=(const TVector2& a, const TVector2& b) { return !(a == b); }
};

template <class T> struct TVector3
{
    T x = T();
    T y = T();
    T z = T();

    TVector3() = default;
    TVector3(T x_, T y_, T z_) : x(x_), y(y_), z(z_) {}
    TVector3(const TVector2<T>& v, T z_) : x(v.x), y(v.y), z(z_) {}
    template <class U> explicit TVector3(const TVector3<U>& v) : x(T(v.x)), y(T(v.y)), z(T(v.z)) {}

    void Set(T x_, T y_, T z_)
    {
        x = x_;
        y = y_;
        z = z_;
    }

    T& operator[](int i) { return (&x)[i]; }
    const T& operator[](int i) const { return (&x)[i]; }
    T* GetPtr() { return &x; }
    const T* GetPtr() const { return &x; }
    TVector2<T> XY() const { return TVector2<T>(x, y); }

    T Dot(const TVector3& v) const { return x * v.x + y * v.y + z * v.z; }
    T LengthSq() const { return x * x + y * y + z * z; }
    T Length() const { return T(std::sqrt(LengthSq())); }

    // As TVector2::Normalize.
    T Normalize()
    {
        const T length = Length();
        if (IsZero(length))
        {
            x = y = z = T(0);
            return T(0);
        }
        x /= length;
        y /= length;
        z /= length;
        return length;
    }
    TVector3 GetNormalized() const
    {
        TVector3 v = *this;
        v.Normalize();
        return v;
    }

    TVector3& operator+=(const TVector3& v)
    {
        x += v.x;
        y += v.y;
        z += v.z;
        return *this;
    }
    TVector3& operator-=(const TVector3& v)
    {
        x -= v.x;
        y -= v.y;
        z -= v.z;
        return *this;
    }
    TVector3& operator*=(T s)
    {
        x *= s;
        y *= s;
        z *= s;
        return *this;
    }
    TVector3& operator/=(T s)
    {
        x /= s;
        y /= s;
        z /= s;
        return *this;
    }

    friend TVector3 operator+(const TVector3& a, const TVector3& b)
    {
        return TVector3(a.x + b.x, a.y + b.y, a.z + b.z);
    }
    friend TVector3 operator-(const TVector3& a, const TVector3& b)
    {
        return TVector3(a.x - b.x, a.y - b.y, a.z - b.z);
    }
    friend TVector3 operator-(const TVector3& a) { return TVector3(-a.x, -a.y, -a.z); }
    friend TVector3 operator*(const TVector3& a, T s) { return TVector3(a.x * s, a.y * s, a.z * s); }
    friend TVector3 operator*(T s, const TVector3& a) { return TVector3(s * a.x, s * a.y, s * a.z); }
    friend TVector3 operator/(const TVector3& a, T s) { return TVector3(a.x / s, a.y / s, a.z / s); }
    friend TVector3 operator/(T s, const TVector3& a) { return TVector3(s / a.x, s / a.y, s / a.z); }
    friend bool operator==(const TVector3& a, const TVector3& b)
    {
        return a.x == b.x && a.y == b.y && a.z == b.z;
    }
    friend bool operator!=(const TVector3& a, const TVector3& b) { return !(a == b); }
};

template <class T> struct TVector4
{
    T x = T();
    T y = T();
    T z = T();
    T w = T();

    TVector4() = default;
    TVector4(T x_, T y_, T z_, T w_) : x(x_), y(y_), z(z_), w(w_) {}
    TVector4(const TVector3<T>& v, T w_) : x(v.x), y(v.y), z(v.z), w(w_) {}
    template <class U> explicit TVector4(const TVector4<U>& v) : x(T(v.x)), y(T(v.y)), z(T(v.z)), w(T(v.w)) {}

    void Set(T x_, T y_, T z_, T w_)
    {
        x = x_;
        y = y_;
        z = z_;
        w = w_;
    }

    T& operator[](int i) { return (&x)[i]; }
    const T& operator[](int i) const { return (&x)[i]; }
    T* GetPtr() { return &x; }
    const T* GetPtr() const { return &x; }
    TVector3<T> XYZ() const { return TVector3<T>(x, y, z); }

    T Dot(const TVector4& v) const { return x * v.x + y * v.y + z * v.z + w * v.w; }
    T LengthSq() const { return x * x + y * y + z * z + w * w; }
    T Length() const { return T(std::sqrt(LengthSq())); }

    // As TVector2::Normalize.
    T Normalize()
    {
        const T length = Length();
        if (IsZero(length))
        {
            x = y = z = w = T(0);
            return T(0);
        }
        x /= length;
        y /= length;
        z /= length;
        w /= length;
        return length;
    }
    TVector4 GetNormalized() const
    {
        TVector4 v = *this;
        v.Normalize();
        return v;
    }

    TVector4& operator+=(const TVector4& v)
    {
        x += v.x;
        y += v.y;
        z += v.z;
        w += v.w;
        return *this;
    }
    TVector4& operator-=(const TVector4& v)
    {
        x -= v.x;
        y -= v.y;
        z -= v.z;
        w -= v.w;
        return *this;
    }
    TVector4& operator*=(T s)
    {
        x *= s;
        y *= s;
        z *= s;
        w *= s;
        return *this;
    }
    TVector4& operator/=(T s)
    {
        x /= s;
        y /= s;
        z /= s;
        w /= s;
        return *this;
    }

    friend TVector4 operator+(const TVector4& a, const TVector4& b)
    {
        return TVector4(a.x + b.x, a.y + b.y, a.z + b.z, a.w + b.w);
    }
    friend TVector4 operator-(const TVector4& a, const TVector4& b)
    {
        return TVector4(a.x - b.x, a.y - b.y, a.z - b.z, a.w - b.w);
    }
    friend TVector4 operator-(const TVector4& a) { return TVector4(-a.x, -a.y, -a.z, -a.w); }
    friend TVector4 operator*(const TVector4& a, T s) { return TVector4(a.x * s, a.y * s, a.z * s, a.w * s); }
    friend TVector4 operator*(T s, const TVector4& a) { return TVector4(s * a.x, s * a.y, s * a.z, s * a.w); }
    friend TVector4 operator/(const TVector4& a, T s) { return TVector4(a.x / s, a.y / s, a.z / s, a.w / s); }
    friend TVector4 operator/(T s, const TVector4& a) { return TVector4(s / a.x, s / a.y, s / a.z, s / a.w); }
    friend bool operator==(const TVector4& a, const TVector4& b)
    {
        return a.x == b.x && a.y == b.y && a.z == b.z && a.w == b.w;
    }
    friend bool operator!=(const TVector4& a, const TVector4& b) { return !(a == b); }
};

typedef TVector2<float> Vec2;
typedef TVector3<float> Vec3;
typedef TVector4<float> Vec4;
typedef TVector2<int> Vec2i;
typedef TVector2<unsigned int> Vec2u;
typedef std::vector<Vec2> Vec2List;

// Dot products.
template <class T> inline T Dot(const TVector2<T>& a, const TVector2<T>& b)
{
    return a.Dot(b);
}
template <class T> inline T Dot(const TVector3<T>& a, const TVector3<T>& b)
{
    return a.Dot(b);
}
template <class T> inline T Dot(const TVector4<T>& a, const TVector4<T>& b)
{
    return a.Dot(b);
}

// Component-wise product and quotient.
template <class T> inline TVector2<T> Mul(const TVector2<T>& a, const TVector2<T>& b)
{
    return TVector2<T>(a.x * b.x, a.y * b.y);
}
template <class T> inline TVector3<T> Mul(const TVector3<T>& a, const TVector3<T>& b)
{
    return TVector3<T>(a.x * b.x, a.y * b.y, a.z * b.z);
}
template <class T> inline TVector4<T> Mul(const TVector4<T>& a, const TVector4<T>& b)
{
    return TVector4<T>(a.x * b.x, a.y * b.y, a.z * b.z, a.w * b.w);
}
template <class T> inline TVector2<T> Div(const TVector2<T>& a, const TVector2<T>& b)
{
    return TVector2<T>(a.x / b.x, a.y / b.y);
}
template <class T> inline TVector3<T> Div(const TVector3<T>& a, const TVector3<T>& b)
{
    return TVector3<T>(a.x / b.x, a.y / b.y, a.z / b.z);
}
template <class T> inline TVector4<T> Div(const TVector4<T>& a, const TVector4<T>& b)
{
    return TVector4<T>(a.x / b.x, a.y / b.y, a.z / b.z, a.w / b.w);
}

// Component-wise minimum and maximum.
template <class T> inline TVector2<T> Min(const TVector2<T>& a, const TVector2<T>& b)
{
    return TVector2<T>(std::min(a.x, b.x), std::min(a.y, b.y));
}
template <class T> inline TVector3<T> Min(const TVector3<T>& a, const TVector3<T>& b)
{
    return TVector3<T>(std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z));
}
template <class T> inline TVector4<T> Min(const TVector4<T>& a, const TVector4<T>& b)
{
    return TVector4<T>(std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z), std::min(a.w, b.w));
}
template <class T> inline TVector2<T> Max(const TVector2<T>& a, const TVector2<T>& b)
{
    return TVector2<T>(std::max(a.x, b.x), std::max(a.y, b.y));
}
template <class T> inline TVector3<T> Max(const TVector3<T>& a, const TVector3<T>& b)
{
    return TVector3<T>(std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z));
}
template <class T> inline TVector4<T> Max(const TVector4<T>& a, const TVector4<T>& b)
{
    return TVector4<T>(std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z), std::max(a.w, b.w));
}

// The z component of the three-dimensional cross product of two plane vectors.
template <class T> inline T Cross(const TVector2<T>& a, const TVector2<T>& b)
{
    return a.x * b.y - a.y * b.x;
}
// The cross product of (0, 0, s) and v: v turned a quarter counter-clockwise and scaled by s.
template <class T> inline TVector2<T> Cross(T s, const TVector2<T>& v)
{
    return TVector2<T>(-s * v.y, s * v.x);
}
// The cross product of v and (0, 0, s).
template <class T> inline TVector2<T> Cross(const TVector2<T>& v, T s)
{
    return TVector2<T>(s * v.y, -s * v.x);
}
template <class T> inline TVector3<T> Cross(const TVector3<T>& a, const TVector3<T>& b)
{
    return TVector3<T>(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x);
}

template <class T> inline TVector2<T> Rot90CCW(const TVector2<T>& v)
{
    return TVector2<T>(-v.y, v.x);
}
template <class T> inline TVector2<T> Rot90CW(const TVector2<T>& v)
{
    return TVector2<T>(v.y, -v.x);
}

template <class V> inline auto DistanceSq(const V& a, const V& b) -> decltype((a - b).LengthSq())
{
    return (a - b).LengthSq();
}
template <class V> inline auto Distance(const V& a, const V& b) -> decltype((a - b).Length())
{
    return (a - b).Length();
}

template <class T> inline bool IsFinite(const TVector2<T>& v)
{
    return IsFiniteFloat(v.x) && IsFiniteFloat(v.y);
}
template <class T> inline bool IsFinite(const TVector3<T>& v)
{
    return IsFiniteFloat(v.x) && IsFiniteFloat(v.y) && IsFiniteFloat(v.z);
}
template <class T> inline bool IsFinite(const TVector4<T>& v)
{
    return IsFiniteFloat(v.x) && IsFiniteFloat(v.y) && IsFiniteFloat(v.z) && IsFiniteFloat(v.w);
}

// The pair of points farthest apart: of all pairs i < j, the first (i outer) that is strictly farther than
// every pair before it. With all points equal (or fewer than two) the pair stays (0, 0).
template <class V> inline void FindFarthestPairAllPairs(const V* points, int nPoints, int& bestI, int& bestJ)
{
    bestI = bestJ = 0;
    decltype(DistanceSq(points[0], points[0])) bestDistanceSq = 0;
    for (int i = 0; i < nPoints; ++i)
        for (int j = i + 1; j < nPoints; ++j)
        {
            const auto d = DistanceSq(points[i], points[j]);
            if (d > bestDistanceSq)
            {
                bestDistanceSq = d;
                bestI = i;
                bestJ = j;
            }
        }
}

namespace detail
{
// Up to this many points all pairs are cheaper than a hull, and the result is the same.
constexpr int FARTHEST_PAIR_ALL_PAIRS_LIMIT = 256;

template <class T> double Cross(const TVector2<T>& o, const TVector2<T>& a, const TVector2<T>& b)
{
    return (double(a.x) - o.x) * (double(b.y) - o.y) - (double(a.y) - o.y) * (double(b.x) - o.x);
}

// The convex hull as indices, counter-clockwise, without collinear or repeated points; of points in the
// same place the lowest index stands for all. Andrew's monotone chain: O(n log n).
template <class T> std::vector<int> ConvexHullIndices(const TVector2<T>* points, int nPoints)
{
    std::vector<int> order(static_cast<size_t>(nPoints));
    for (int i = 0; i < nPoints; ++i)
        order[static_cast<size_t>(i)] = i;
    std::sort(order.begin(), order.end(),
              [points](int a, int b)
              {
                  if (points[a].x != points[b].x)
                      return points[a].x < points[b].x;
                  if (points[a].y != points[b].y)
                      return points[a].y < points[b].y;
                  return a < b;
              });
    std::vector<int> unique;
    for (int i : order)
        if (unique.empty() || !(points[unique.back()] == points[i]))
            unique.push_back(i);
    if (unique.size() < 3)
        return unique;
    std::vector<int> hull(2 * unique.size());
    size_t k = 0;
    for (size_t i = 0; i < unique.size(); ++i)
    {
        while (k >= 2 && Cross(points[hull[k - 2]], points[hull[k - 1]], points[unique[i]]) <= 0)
            --k;
        hull[k++] = unique[i];
    }
    for (size_t i = unique.size() - 1, lower = k + 1; i-- > 0;)
    {
        while (k >= lower && Cross(points[hull[k - 2]], points[hull[k - 1]], points[unique[i]]) <= 0)
            --k;
        hull[k++] = unique[i];
    }
    hull.resize(k - 1);
    return hull;
}
} // namespace detail

// The same pair for many points: the farthest pair lies on the convex hull, where rotating calipers
// visit every antipodal pair in linear time. Among pairs equally far the lowest (i, j) wins, as above.
template <class T>
inline void FindFarthestPair(const TVector2<T>* points, int nPoints, int& bestI, int& bestJ)
{
    if (nPoints <= detail::FARTHEST_PAIR_ALL_PAIRS_LIMIT)
    {
        FindFarthestPairAllPairs(points, nPoints, bestI, bestJ);
        return;
    }
    bestI = bestJ = 0;
    const std::vector<int> hull = detail::ConvexHullIndices(points, nPoints);
    const size_t h = hull.size();
    T bestDistanceSq = 0;
    auto consider = [&](int a, int b)
    {
        const int i = std::min(a, b);
        const int j = std::max(a, b);
        if (i == j)
            return;
        const T d = DistanceSq(points[i], points[j]);
        if (d > bestDistanceSq || (d == bestDistanceSq && d > 0 && (i < bestI || (i == bestI && j < bestJ))))
        {
            bestDistanceSq = d;
            bestI = i;
            bestJ = j;
        }
    };
    if (h < 3)
    {
        if (h == 2)
            consider(hull[0], hull[1]);
        return;
    }
    size_t j = 1;
    for (size_t i = 0; i < h; ++i)
    {
        const size_t ni = (i + 1) % h;
        const TVector2<T> edge = points[hull[ni]] - points[hull[i]];
        auto advance = [&](size_t k)
        {
            const TVector2<T> next = points[hull[(k + 1) % h]] - points[hull[k]];
            return double(edge.x) * next.y - double(edge.y) * next.x;
        };
        for (size_t steps = 0; steps < h && advance(j) > 0; ++steps)
            j = (j + 1) % h;
        const size_t nj = (j + 1) % h;
        consider(hull[i], hull[j]);
        consider(hull[ni], hull[j]);
        consider(hull[i], hull[nj]);
        consider(hull[ni], hull[nj]);
    }
}

template <class V> inline void FindFarthestPair(const V* points, int nPoints, int& bestI, int& bestJ)
{
    FindFarthestPairAllPairs(points, nPoints, bestI, bestJ);
}

} // namespace math
