#pragma once

#include "logging/Exception.h"
#include "math/Vector.h"

#include <cmath>

namespace math
{

// Square matrices stored row-major and used with column vectors: element (row, column) is m[row * N +
// column].

template <class T> struct TMatrix2
{
    T m[4] = {1, 0, 0, 1};

    TMatrix2() = default;
    TMatrix2(T m0, T m1, T m2, T m3) : m{m0, m1, m2, m3} {}

    static TMatrix2 Identity() { return TMatrix2(); }
    static TMatrix2 Zero() { return TMatrix2(0, 0, 0, 0); }
    static TMatrix2 Rotation(T angle)
    {
        const T c = std::cos(angle), s = std::sin(angle);
        return TMatrix2(c, -s, s, c);
    }

    T& operator[](int i) { return m[i]; }
    const T& operator[](int i) const { return m[i]; }
    T& operator()(int row, int column) { return m[row * 2 + column]; }
    const T& operator()(int row, int column) const { return m[row * 2 + column]; }
    T* GetPtr() { return m; }
    const T* GetPtr() const { return m; }

    T Determinant() const { return m[0] * m[3] - m[1] * m[2]; }
    [[nodiscard]] TMatrix2 Transpose() const { return TMatrix2(m[0], m[2], m[1], m[3]); }
    // The adjugate: the inverse times the determinant.
    [[nodiscard]] TMatrix2 Adj() const { return TMatrix2(m[3], -m[1], -m[2], m[0]); }

    TMatrix2& operator+=(const TMatrix2& b)
    {
        for (int i = 0; i < 4; ++i)
            m[i] += b.m[i];
        return *this;
    }
    TMatrix2& operator-=(const TMatrix2& b)
    {
        for (int i = 0; i < 4; ++i)
            m[i] -= b.m[i];
        return *this;
    }
    TMatrix2& operator*=(T s)
    {
        for (T& e : m)
            e *= s;
        return *this;
    }

    friend TMatrix2 operator+(TMatrix2 a, const TMatrix2& b) { return a += b; }
    friend TMatrix2 operator-(TMatrix2 a, const TMatrix2& b) { return a -= b; }
    friend TMatrix2 operator*(TMatrix2 a, T s) { return a *= s; }
    friend TMatrix2 operator*(T s, TMatrix2 a) { return a *= s; }
    friend TMatrix2 operator*(const TMatrix2& a, const TMatrix2& b)
    {
        return TMatrix2(a.m[0] * b.m[0] + a.m[1] * b.m[2], a.m[0] * b.m[1] + a.m[1] * b.m[3],
                        a.m[2] * b.m[0] + a.m[3] * b.m[2], a.m[2] * b.m[1] + a.m[3] * b.m[3]);
    }
    friend TVector2<T> operator*(const TMatrix2& a, const TVector2<T>& v)
    {
        return TVector2<T>(a.m[0] * v.x + a.m[1] * v.y, a.m[2] * v.x + a.m[3] * v.y);
    }
    friend bool operator==(const TMatrix2& a, const TMatrix2& b)
    {
        for (int i = 0; i < 4; ++i)
            if (a.m[i] != b.m[i])
                return false;
        return true;
    }
    friend bool operator!=(const TMatrix2& a, const TMatrix2& b) { return !(a == b); }
};

template <class T> struct TMatrix3
{
    T m[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};

    TMatrix3() = default;
    TMatrix3(T m0, T m1, T m2, T m3, T m4, T m5, T m6, T m7, T m8) : m{m0, m1, m2, m3, m4, m5, m6, m7, m8} {}

    static TMatrix3 Identity() { return TMatrix3(); }
    static TMatrix3 Zero() { return TMatrix3(0, 0, 0, 0, 0, 0, 0, 0, 0); }
    // Counter-clockwise rotation of the plane about the origin, in radians.
    static TMatrix3 RotationZ(T angle)
    {
        const T c = std::cos(angle), s = std::sin(angle);
        return TMatrix3(c, -s, 0, s, c, 0, 0, 0, 1);
    }
    static TMatrix3 Translation2D(const TVector2<T>& v) { return TMatrix3(1, 0, v.x, 0, 1, v.y, 0, 0, 1); }
    static TMatrix3 Scale2D(const TVector2<T>& v) { return TMatrix3(v.x, 0, 0, 0, v.y, 0, 0, 0, 1); }

    T& operator[](int i) { return m[i]; }
    const T& operator[](int i) const { return m[i]; }
    T& operator()(int row, int column) { return m[row * 3 + column]; }
    const T& operator()(int row, int column) const { return m[row * 3 + column]; }
    T* GetPtr() { return m; }
    const T* GetPtr() const { return m; }

    TVector3<T> GetRow(int row) const { return TVector3<T>(m[row * 3], m[row * 3 + 1], m[row * 3 + 2]); }
    TVector3<T> GetColumn(int column) const { return TVector3<T>(m[column], m[column + 3], m[column + 6]); }
    void SetColumn(int column, const TVector3<T>& v)
    {
        m[column] = v.x;
        m[column + 3] = v.y;
        m[column + 6] = v.z;
    }
    // The third column holds a plane transform's translation.
    TVector3<T> GetColumn2() const { return GetColumn(2); }
    void SetColumn2(const TVector3<T>& v) { SetColumn(2, v); }

    T Determinant() const
    {
        return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) +
               m[2] * (m[3] * m[7] - m[4] * m[6]);
    }
    [[nodiscard]] TMatrix3 Transpose() const
    {
        return TMatrix3(m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]);
    }
    // The adjugate (transposed cofactors): the inverse times the determinant.
    [[nodiscard]] TMatrix3 Adj() const
    {
        return TMatrix3(m[4] * m[8] - m[5] * m[7], m[2] * m[7] - m[1] * m[8], m[1] * m[5] - m[2] * m[4],
                        m[5] * m[6] - m[3] * m[8], m[0] * m[8] - m[2] * m[6], m[2] * m[3] - m[0] * m[5],
                        m[3] * m[7] - m[4] * m[6], m[1] * m[6] - m[0] * m[7], m[0] * m[4] - m[1] * m[3]);
    }

    TMatrix3& operator*=(T s)
    {
        for (T& e : m)
            e *= s;
        return *this;
    }
    TMatrix3& operator*=(const TMatrix3& b) { return *this = *this * b; }

    friend TMatrix3 operator*(TMatrix3 a, T s) { return a *= s; }
    friend TMatrix3 operator*(T s, TMatrix3 a) { return a *= s; }
    friend TMatrix3 operator*(const TMatrix3& a, const TMatrix3& b)
    {
        TMatrix3 r = Zero();
        for (int row = 0; row < 3; ++row)
            for (int column = 0; column < 3; ++column)
                for (int k = 0; k < 3; ++k)
                    r.m[row * 3 + column] += a.m[row * 3 + k] * b.m[k * 3 + column];
        return r;
    }
    friend TVector3<T> operator*(const TMatrix3& a, const TVector3<T>& v)
    {
        return TVector3<T>(a.m[0] * v.x + a.m[1] * v.y + a.m[2] * v.z,
                           a.m[3] * v.x + a.m[4] * v.y + a.m[5] * v.z,
                           a.m[6] * v.x + a.m[7] * v.y + a.m[8] * v.z);
    }
    friend bool operator==(const TMatrix3& a, const TMatrix3& b)
    {
        for (int i = 0; i < 9; ++i)
            if (a.m[i] != b.m[i])
                return false;
        return true;
    }
    friend bool operator!=(const TMatrix3& a, const TMatrix3& b) { return !(a == b); }
};

template <class T> struct TMatrix4
{
    T m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

    TMatrix4() = default;
    TMatrix4(T m0, T m1, T m2, T m3, T m4, T m5, T m6, T m7, T m8, T m9, T m10, T m11, T m12, T m13, T m14,
             T m15)
        : m{m0, m1, m2, m3, m4, m5, m6, m7, m8, m9, m10, m11, m12, m13, m14, m15}
    {
    }
    // Element i of the array in row-major order.
    explicit TMatrix4(const T* elements)
    {
        for (int i = 0; i < 16; ++i)
            m[i] = elements[i];
    }

    static TMatrix4 Identity() { return TMatrix4(); }
    static TMatrix4 Zero()
    {
        TMatrix4 r;
        for (T& e : r.m)
            e = 0;
        return r;
    }
    static TMatrix4 Translation(const TVector3<T>& v)
    {
        TMatrix4 r;
        r.m[3] = v.x;
        r.m[7] = v.y;
        r.m[11] = v.z;
        return r;
    }
    static TMatrix4 Scale(const TVector3<T>& v)
    {
        TMatrix4 r;
        r.m[0] = v.x;
        r.m[5] = v.y;
        r.m[10] = v.z;
        return r;
    }

    T& operator[](int i) { return m[i]; }
    const T& operator[](int i) const { return m[i]; }
    T& operator()(int row, int column) { return m[row * 4 + column]; }
    const T& operator()(int row, int column) const { return m[row * 4 + column]; }
    T* GetPtr() { return m; }
    const T* GetPtr() const { return m; }

    [[nodiscard]] TMatrix4 Transpose() const
    {
        TMatrix4 r;
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 4; ++column)
                r.m[column * 4 + row] = m[row * 4 + column];
        return r;
    }

    // The graphics interface stores matrices column-major, so both directions transpose. Defined in
    // math/MatrixGL.h, which only code that draws includes: the math library itself never links GL.
    // Multiplies the current GL matrix by this one.
    void MultToGL() const;
    // Reads a GL matrix, such as GL_MODELVIEW_MATRIX, through glGetFloatv or glGetDoublev.
    void LoadFromGL(unsigned int matrixName);

    TMatrix4& operator*=(const TMatrix4& b) { return *this = *this * b; }

    friend TMatrix4 operator*(const TMatrix4& a, const TMatrix4& b)
    {
        TMatrix4 r = Zero();
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 4; ++column)
                for (int k = 0; k < 4; ++k)
                    r.m[row * 4 + column] += a.m[row * 4 + k] * b.m[k * 4 + column];
        return r;
    }
    friend TVector4<T> operator*(const TMatrix4& a, const TVector4<T>& v)
    {
        TVector4<T> r;
        for (int row = 0; row < 4; ++row)
            r[row] =
                a.m[row * 4] * v.x + a.m[row * 4 + 1] * v.y + a.m[row * 4 + 2] * v.z + a.m[row * 4 + 3] * v.w;
        return r;
    }
    friend bool operator==(const TMatrix4& a, const TMatrix4& b)
    {
        for (int i = 0; i < 16; ++i)
            if (a.m[i] != b.m[i])
                return false;
        return true;
    }
    friend bool operator!=(const TMatrix4& a, const TMatrix4& b) { return !(a == b); }
};

typedef TMatrix2<float> Mat2;
typedef TMatrix3<float> Mat3;
typedef TMatrix4<float> Mat4;
typedef TMatrix4<double> Mat4d;

// The inverse, as the adjugate over the determinant. A singular matrix is the caller's fault.
template <class T> inline TMatrix2<T> Inverted(const TMatrix2<T>& m)
{
    const T det = m.Determinant();
    QLEX_ASSERT(det != 0);
    return m.Adj() * (T(1) / det);
}
template <class T> inline TMatrix3<T> Inverted(const TMatrix3<T>& m)
{
    const T det = m.Determinant();
    QLEX_ASSERT(det != 0);
    return m.Adj() * (T(1) / det);
}

// A plane point (p, 1) through m, brought back from homogeneous coordinates.
template <class T> inline TVector2<T> TransformCoordinate(const TMatrix3<T>& m, const TVector2<T>& p)
{
    const TVector3<T> r = m * TVector3<T>(p, T(1));
    return TVector2<T>(r.x / r.z, r.y / r.z);
}

// A difference of points: the transformed d less the transformed origin, so translation drops out.
template <class T> inline TVector2<T> TransformDirection(const TMatrix3<T>& m, const TVector2<T>& d)
{
    return TransformCoordinate(m, d) - TransformCoordinate(m, TVector2<T>(0, 0));
}

// Normals stay perpendicular to transformed lines only under the inverse transpose of the linear part.
template <class T> inline TVector2<T> TransformNormal2D(const TMatrix3<T>& m, const TVector2<T>& n)
{
    const T det = m.m[0] * m.m[4] - m.m[1] * m.m[3];
    return TVector2<T>((m.m[4] * n.x - m.m[3] * n.y) / det, (m.m[0] * n.y - m.m[1] * n.x) / det);
}

// A plane transform widened for the graphics interface: z passes through unchanged.
template <class T> inline TMatrix4<T> Mat4FromMat2D(const TMatrix3<T>& m)
{
    return TMatrix4<T>(m.m[0], m.m[1], 0, m.m[2], //
                       m.m[3], m.m[4], 0, m.m[5], //
                       0, 0, 1, 0,                //
                       m.m[6], m.m[7], 0, m.m[8]);
}

} // namespace math
