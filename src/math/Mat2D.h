#pragma once

#include "math/Matrix.h"
#include "math/Vector.h"

#include <cmath>

namespace math
{

// A rigid transform of the plane: rotation by the angle whose cosine and sine are (c, s), then translation
// by (tx, ty). It never scales, so (c, s) stays a unit vector.
template <class T> struct TMat2D
{
    T c = 1;
    T s = 0;
    T tx = 0;
    T ty = 0;

    TMat2D() = default;
    TMat2D(T c_, T s_, T tx_, T ty_) : c(c_), s(s_), tx(tx_), ty(ty_) {}

    static TMat2D Identity() { return TMat2D(); }
    static TMat2D Rotation(T angle) { return TMat2D(std::cos(angle), std::sin(angle), 0, 0); }
    static TMat2D Translation(const TVector2<T>& v) { return TMat2D(1, 0, v.x, v.y); }
    // Translation times rotation: the point is turned about the origin first, then moved by v.
    static TMat2D TranslationRotation(const TVector2<T>& v, T angle)
    {
        return TMat2D(std::cos(angle), std::sin(angle), v.x, v.y);
    }

    TVector2<T> GetTranslation() const { return TVector2<T>(tx, ty); }
    void SetTranslation(const TVector2<T>& v)
    {
        tx = v.x;
        ty = v.y;
    }
    // The image of the x axis: (cosine, sine).
    TVector2<T> GetColumn0() const { return TVector2<T>(c, s); }
    // The image of the y axis.
    TVector2<T> GetColumn1() const { return TVector2<T>(-s, c); }
    // Sets the rotation from the direction the x axis goes to; the caller gives a unit vector.
    void SetColumn0(const TVector2<T>& v)
    {
        c = v.x;
        s = v.y;
    }
    T GetAngle() const { return std::atan2(s, c); }

    TMatrix3<T> ToMatrix3() const { return TMatrix3<T>(c, -s, tx, s, c, ty, 0, 0, 1); }

    // Multiplies the current GL matrix by this transform. Defined in math/MatrixGL.h.
    void MultToGL() const;

    // (a * b) applied to p is a applied to (b applied to p).
    friend TMat2D operator*(const TMat2D& a, const TMat2D& b)
    {
        return TMat2D(a.c * b.c - a.s * b.s, a.s * b.c + a.c * b.s, a.c * b.tx - a.s * b.ty + a.tx,
                      a.s * b.tx + a.c * b.ty + a.ty);
    }
    TMat2D& operator*=(const TMat2D& b) { return *this = *this * b; }

    friend bool operator==(const TMat2D& a, const TMat2D& b)
    {
        return a.c == b.c && a.s == b.s && a.tx == b.tx && a.ty == b.ty;
    }
    friend bool operator!=(const TMat2D& a, const TMat2D& b) { return !(a == b); }
};

typedef TMat2D<float> Mat2D;

template <class T> inline TVector2<T> TransformCoordinate(const TMat2D<T>& m, const TVector2<T>& p)
{
    return TVector2<T>(m.c * p.x - m.s * p.y + m.tx, m.s * p.x + m.c * p.y + m.ty);
}

// Rotation only: for directions and normals, which a rigid transform keeps perpendicular.
template <class T> inline TVector2<T> TransformNormal(const TMat2D<T>& m, const TVector2<T>& n)
{
    return TVector2<T>(m.c * n.x - m.s * n.y, m.s * n.x + m.c * n.y);
}

// The inverse rotation is the transposed one, so these need no division.
template <class T> inline TVector2<T> InvTransformCoordinate(const TMat2D<T>& m, const TVector2<T>& p)
{
    const T x = p.x - m.tx, y = p.y - m.ty;
    return TVector2<T>(m.c * x + m.s * y, -m.s * x + m.c * y);
}
template <class T> inline TVector2<T> InvTransformNormal(const TMat2D<T>& m, const TVector2<T>& n)
{
    return TVector2<T>(m.c * n.x + m.s * n.y, -m.s * n.x + m.c * n.y);
}

template <class T> inline TMat2D<T> Inverted(const TMat2D<T>& m)
{
    return TMat2D<T>(m.c, -m.s, -(m.c * m.tx + m.s * m.ty), m.s * m.tx - m.c * m.ty);
}

template <class T> inline TMatrix4<T> Mat4FromMat2D(const TMat2D<T>& m)
{
    return Mat4FromMat2D(m.ToMatrix3());
}

} // namespace math
