#pragma once

#include "math/MathUtil.h"
#include "math/Vector.h"

#include <cmath>
#include <limits>
#include <vector>

namespace math
{

namespace detail
{
// Uniform access to the axes of a box corner, which is a plain number when the box has one axis.
template <class T> inline T& Axis(T& v, int)
{
    return v;
}
template <class T> inline const T& Axis(const T& v, int)
{
    return v;
}
template <class T> inline T& Axis(TVector2<T>& v, int i)
{
    return v[i];
}
template <class T> inline const T& Axis(const TVector2<T>& v, int i)
{
    return v[i];
}
template <class T> inline T& Axis(TVector3<T>& v, int i)
{
    return v[i];
}
template <class T> inline const T& Axis(const TVector3<T>& v, int i)
{
    return v[i];
}
} // namespace detail

// An axis-aligned box between two corners. V is the corner type: a TVector2<T> for N = 2, T itself for N = 1.
template <class T, int N, class V> class BoundingBox
{
public:
    V min;
    V max;

    // Leaves the corners unset; use Empty() for a box to grow with Include.
    BoundingBox() = default;
    BoundingBox(const V& min_, const V& max_) : min(min_), max(max_) {}

    // Inverted infinite corners: contains nothing, and the first Include makes it that point.
    static BoundingBox Empty() { return BoundingBox(Splat(INFINITY_T), Splat(-INFINITY_T)); }
    static BoundingBox Everything() { return BoundingBox(Splat(-INFINITY_T), Splat(INFINITY_T)); }

    const V& GetMin() const { return min; }
    const V& GetMax() const { return max; }

    void Include(const V& point)
    {
        for (int i = 0; i < N; ++i)
        {
            T& lo = detail::Axis(min, i);
            T& hi = detail::Axis(max, i);
            const T p = detail::Axis(point, i);
            if (p < lo)
                lo = p;
            if (p > hi)
                hi = p;
        }
    }
    void Include(const BoundingBox& box)
    {
        for (int i = 0; i < N; ++i)
        {
            T& lo = detail::Axis(min, i);
            T& hi = detail::Axis(max, i);
            if (detail::Axis(box.min, i) < lo)
                lo = detail::Axis(box.min, i);
            if (detail::Axis(box.max, i) > hi)
                hi = detail::Axis(box.max, i);
        }
    }

    V GetCenter() const { return (min + max) * T(0.5); }
    V GetSize() const { return max - min; }
    // Area in two dimensions, length in one.
    T GetArea() const
    {
        const V size = GetSize();
        T area = 1;
        for (int i = 0; i < N; ++i)
            area *= detail::Axis(size, i);
        return area;
    }
    // Resizes about the centre.
    void SetSize(const V& size)
    {
        const V center = GetCenter();
        const V half = size * T(0.5);
        min = center - half;
        max = center + half;
    }
    bool IsEmpty() const
    {
        for (int i = 0; i < N; ++i)
            if (detail::Axis(min, i) > detail::Axis(max, i))
                return true;
        return false;
    }

    // Corner k takes the maximum on axis i when bit i of k is set: (min x, min y), (max x, min y),
    // (min x, max y), (max x, max y).
    std::vector<V> GetCorners() const
    {
        std::vector<V> corners;
        for (int k = 0; k < (1 << N); ++k)
        {
            V corner = min;
            for (int i = 0; i < N; ++i)
                if (k & (1 << i))
                    detail::Axis(corner, i) = detail::Axis(max, i);
            corners.push_back(corner);
        }
        return corners;
    }

    static BoundingBox Translate(const BoundingBox& box, const V& offset)
    {
        return BoundingBox(box.min + offset, box.max + offset);
    }

    bool IsFinite() const
    {
        for (int i = 0; i < N; ++i)
            if (!IsFiniteFloat(detail::Axis(min, i)) || !IsFiniteFloat(detail::Axis(max, i)))
                return false;
        return true;
    }

    // Both tests include the border.
    bool Contains(const V& point) const
    {
        for (int i = 0; i < N; ++i)
        {
            const T p = detail::Axis(point, i);
            if (!(detail::Axis(min, i) <= p && p <= detail::Axis(max, i)))
                return false;
        }
        return true;
    }
    bool Contains(const BoundingBox& box) const
    {
        for (int i = 0; i < N; ++i)
            if (!(detail::Axis(min, i) <= detail::Axis(box.min, i) &&
                  detail::Axis(box.max, i) <= detail::Axis(max, i)))
                return false;
        return true;
    }

    // Half the extent of the box along the direction n (times |n|): its radius for a separating-axis test.
    T ProjectedRadius(const V& n) const
    {
        T r = 0;
        for (int i = 0; i < N; ++i)
            r += (detail::Axis(max, i) - detail::Axis(min, i)) * T(0.5) * std::fabs(detail::Axis(n, i));
        return r;
    }

    // Signed distance, negative inside. Each axis contributes its nearer border coordinate (the maximum on
    // ties); inside, the result is minus the smallest gap to those, and outside, the distance to the corner
    // they make up. So a point beside an edge is measured to a corner: an upper bound of the true distance.
    T Distance(const V& point) const
    {
        V nearest = point;
        T smallestGap = std::numeric_limits<T>::infinity();
        for (int i = 0; i < N; ++i)
        {
            const T p = detail::Axis(point, i);
            const T lo = detail::Axis(min, i), hi = detail::Axis(max, i);
            const T nearer = std::fabs(p - lo) < std::fabs(p - hi) ? lo : hi;
            detail::Axis(nearest, i) = nearer;
            const T gap = std::fabs(p - nearer);
            if (gap < smallestGap)
                smallestGap = gap;
        }
        if (Contains(point))
            return -smallestGap;
        T distanceSq = 0;
        for (int i = 0; i < N; ++i)
        {
            const T d = detail::Axis(point, i) - detail::Axis(nearest, i);
            distanceSq += d * d;
        }
        return std::sqrt(distanceSq);
    }

    friend bool operator==(const BoundingBox& a, const BoundingBox& b)
    {
        return a.min == b.min && a.max == b.max;
    }
    friend bool operator!=(const BoundingBox& a, const BoundingBox& b) { return !(a == b); }

private:
    static constexpr T INFINITY_T = std::numeric_limits<T>::infinity();

    static V Splat(T value)
    {
        V v;
        for (int i = 0; i < N; ++i)
            detail::Axis(v, i) = value;
        return v;
    }
};

// True when the boxes overlap or touch.
template <class T, int N, class V>
inline bool Intersects(const BoundingBox<T, N, V>& a, const BoundingBox<T, N, V>& b)
{
    for (int i = 0; i < N; ++i)
        if (!(detail::Axis(a.min, i) <= detail::Axis(b.max, i) &&
              detail::Axis(b.min, i) <= detail::Axis(a.max, i)))
            return false;
    return true;
}

typedef BoundingBox<float, 2, Vec2> BoundingBox2;
typedef BoundingBox2 BoundingBox2D;
typedef BoundingBox2 BoundingBox2f;
template <class T> using BoundingBox1 = BoundingBox<T, 1, T>;

} // namespace math
