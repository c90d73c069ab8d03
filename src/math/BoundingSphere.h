#pragma once

#include "math/Mat2D.h"
#include "math/Vector.h"

#include <limits>

namespace math
{

// A centre and a radius: a circle when V is Vec2. A negative radius contains nothing.
template <class V> struct TBoundingSphere
{
    typedef decltype(V().Length()) Scalar;

    V center = V();
    Scalar radius = 0;

    TBoundingSphere() = default;
    TBoundingSphere(const V& center_, Scalar radius_) : center(center_), radius(radius_) {}

    static TBoundingSphere Empty() { return TBoundingSphere(V(), -std::numeric_limits<Scalar>::infinity()); }
    static TBoundingSphere Everything()
    {
        return TBoundingSphere(V(), std::numeric_limits<Scalar>::infinity());
    }

    // The given centre with the radius that reaches the farthest point.
    static TBoundingSphere BuildFromCenterAndPoints(const V& center, int nPoints, const V* points)
    {
        Scalar radiusSq = 0;
        for (int i = 0; i < nPoints; ++i)
        {
            const Scalar d = DistanceSq(center, points[i]);
            if (d > radiusSq)
                radiusSq = d;
        }
        return TBoundingSphere(center, std::sqrt(radiusSq));
    }

    // Centred between the two points farthest apart: not the smallest enclosing circle in general, but found
    // without iteration, and exact for two points and for centrally symmetric sets.
    static TBoundingSphere BuildBest(int nPoints, const V* points)
    {
        if (nPoints <= 0)
            return TBoundingSphere(V(), Scalar(-1));
        if (nPoints == 1)
            return TBoundingSphere(points[0], Scalar(0));
        int i, j;
        FindFarthestPair(points, nPoints, i, j);
        return BuildFromCenterAndPoints((points[i] + points[j]) * Scalar(0.5), nPoints, points);
    }

    bool Contains(const V& point) const
    {
        return DistanceSq(center, point) <= radius * radius && radius >= 0;
    }

    // The sphere moved by a rigid transform; the radius is unchanged.
    template <class T> TBoundingSphere Transform(const TMat2D<T>& m) const
    {
        return TBoundingSphere(TransformCoordinate(m, center), radius);
    }
};

typedef TBoundingSphere<Vec2> BoundingCircle;

template <class T>
inline TBoundingSphere<TVector2<T>> Transform(const TMat2D<T>& m, const TBoundingSphere<TVector2<T>>& s)
{
    return s.Transform(m);
}

// True when the spheres overlap or touch.
template <class V> inline bool Intersects(const TBoundingSphere<V>& a, const TBoundingSphere<V>& b)
{
    return Distance(a.center, b.center) <= a.radius + b.radius;
}

} // namespace math
