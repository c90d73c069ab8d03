#pragma once

// The operations that hand matrices to the graphics interface. Only drawing code includes this header, so
// the math library and everything that uses it without drawing stay free of GL.

#include "math/Mat2D.h"
#include "math/Matrix.h"

#include <GL/gl.h>

namespace math
{

namespace detail
{
inline void GLMultMatrix(const float* columnMajor)
{
    glMultMatrixf(columnMajor);
}
inline void GLMultMatrix(const double* columnMajor)
{
    glMultMatrixd(columnMajor);
}
inline void GLGetMatrix(unsigned int matrixName, float* columnMajor)
{
    glGetFloatv(matrixName, columnMajor);
}
inline void GLGetMatrix(unsigned int matrixName, double* columnMajor)
{
    glGetDoublev(matrixName, columnMajor);
}
} // namespace detail

// GL reads 16 numbers column by column, which is our row-major array transposed.
template <class T> void TMatrix4<T>::MultToGL() const
{
    detail::GLMultMatrix(Transpose().m);
}

template <class T> void TMatrix4<T>::LoadFromGL(unsigned int matrixName)
{
    TMatrix4 columnMajor;
    detail::GLGetMatrix(matrixName, columnMajor.m);
    *this = columnMajor.Transpose();
}

template <class T> void TMat2D<T>::MultToGL() const
{
    Mat4FromMat2D(*this).MultToGL();
}

} // namespace math
