#pragma once

#include "logging/Exception.h"
#include "util/VectorPOD.h"

#include <algorithm>
#include <cmath>

namespace util
{

// A grid over one flat array, element (x, y) at x + y * width.
template <class T, class Data = VectorPOD<T>> class Array2D
{
public:
    Array2D() = default;
    Array2D(unsigned width, unsigned height) : m_width(width), m_height(height) { m_data.resize(size_t(width) * height); }

    unsigned GetWidth() const { return m_width; }
    unsigned GetHeight() const { return m_height; }
    Data& GetData() { return m_data; }
    const Data& GetData() const { return m_data; }

    void Resize(unsigned width, unsigned height)
    {
        m_width = width;
        m_height = height;
        m_data.resize(size_t(width) * height);
    }

    T& operator()(unsigned x, unsigned y)
    {
        QLEX_ASSERT(x < m_width && y < m_height);
        return m_data[x + size_t(y) * m_width];
    }
    const T& operator()(unsigned x, unsigned y) const
    {
        QLEX_ASSERT(x < m_width && y < m_height);
        return m_data[x + size_t(y) * m_width];
    }

    // The element at the coordinates clamped into the grid.
    T Clamped(int x, int y) const
    {
        const int cx = std::clamp(x, 0, int(m_width) - 1);
        const int cy = std::clamp(y, 0, int(m_height) - 1);
        return m_data[unsigned(cx) + size_t(cy) * m_width];
    }

    // Bilinear read between the four nearest elements; beyond the border the border elements repeat.
    T Sample(float x, float y) const
    {
        const float x0 = std::max(0.0f, std::floor(x));
        const float y0 = std::max(0.0f, std::floor(y));
        const float fx = x - x0;
        const float fy = y - y0;
        const int ix = int(x0);
        const int iy = int(y0);
        return Clamped(ix, iy) * ((1 - fx) * (1 - fy)) + Clamped(ix + 1, iy) * (fx * (1 - fy)) +
               Clamped(ix, iy + 1) * ((1 - fx) * fy) + Clamped(ix + 1, iy + 1) * (fx * fy);
    }

private:
    unsigned m_width = 0;
    unsigned m_height = 0;
    Data m_data;
};

} // namespace util
