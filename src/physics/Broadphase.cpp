#include "physics/Broadphase.h"

#include "physics/Box.h"
#include "physics/Circle.h"
#include "physics/Polygon.h"

#include <algorithm>
#include <cmath>

namespace physics
{
namespace
{
// A shape's box grows by this share of its distance from the origin and size, and by the absolute
// margin: the pair tests round differently from the box, and must find nothing the box leaves out.
const float RELATIVE_MARGIN = 1e-4f;
const float ABSOLUTE_MARGIN = 1e-5f;
// A cell is this many median shapes across: most shapes then cover one to four cells.
const float CELL_PER_MEDIAN_SIZE = 2.0f;
// A shape over more cells than this meets every shape directly instead.
const std::int64_t MAX_CELLS_PER_SHAPE = 16;
// Cell coordinates stay within 32 bits; shapes beyond share the border cells, which costs tests, not
// contacts.
const double MAX_CELL_COORDINATE = 2147483647.0;
// Entries are sorted by counting where the grid they occupy has at most this many cells per entry, plus a
// few: beyond, clearing the counts would cost more than the sort saves.
const std::uint64_t COUNTING_SORT_CELLS_PER_ENTRY = 4;
const std::uint64_t COUNTING_SORT_MIN_CELLS = 1024;

const int STAGE_SHIFT = 58;
const int OUTER_SHIFT = 29;
const std::uint64_t INDEX_MASK = (std::uint64_t(1) << OUTER_SHIFT) - 1;

bool IsFinite(const math::Vec2& v)
{
    return std::isfinite(v.x) && std::isfinite(v.y);
}

bool Overlap(const math::Vec2& minA, const math::Vec2& maxA, const math::Vec2& minB, const math::Vec2& maxB)
{
    return minA.x <= maxB.x && minB.x <= maxA.x && minA.y <= maxB.y && minB.y <= maxA.y;
}

std::uint64_t MakeKey(Broadphase::Stage stage, std::uint32_t outer, std::uint32_t inner)
{
    return (std::uint64_t(stage) << STAGE_SHIFT) | (std::uint64_t(outer) << OUTER_SHIFT) | inner;
}
} // namespace

void Broadphase::Clear()
{
    m_shapes.clear();
    std::fill(std::begin(m_counts), std::end(m_counts), 0u);
}

void Broadphase::Add(Kind kind, math::Vec2 min, math::Vec2 max)
{
    const math::Vec2 centre = (min + max) * 0.5f;
    const float size = std::max(max.x - min.x, max.y - min.y);
    const float margin =
        RELATIVE_MARGIN * (std::fabs(centre.x) + std::fabs(centre.y) + size) + ABSOLUTE_MARGIN;
    const math::Vec2 grow(margin, margin);
    m_shapes.push_back(Shape{min - grow, max + grow, m_counts[kind]++, kind});
}

void Broadphase::AddPolygon(const Polygon& polygon)
{
    // The distance map's box: outside it the polygon's distance is positive, so nothing there touches.
    math::Vec2 corners[4];
    polygon.GetMapBox().CalcCorners(corners);
    math::Vec2 min(math::INF, math::INF);
    math::Vec2 max(-math::INF, -math::INF);
    for (const math::Vec2& corner : corners)
    {
        const math::Vec2 p = math::TransformCoordinate(polygon.GetPose(), corner);
        min = math::Vec2(std::min(min.x, p.x), std::min(min.y, p.y));
        max = math::Vec2(std::max(max.x, p.x), std::max(max.y, p.y));
    }
    Add(POLYGON, min, max);
}

void Broadphase::AddCircle(const Circle& circle)
{
    const math::Vec2 r(circle.GetRadius(), circle.GetRadius());
    Add(CIRCLE, circle.GetPosition() - r, circle.GetPosition() + r);
}

void Broadphase::AddBox(const Box& box)
{
    const math::OBB2D& obb = box.GetWorldOBB();
    const math::Vec2 a = obb.axis[0] * obb.halfExtent[0];
    const math::Vec2 b = obb.axis[1] * obb.halfExtent[1];
    const math::Vec2 half(std::fabs(a.x) + std::fabs(b.x), std::fabs(a.y) + std::fabs(b.y));
    Add(BOX, obb.center - half, obb.center + half);
}

std::uint64_t Broadphase::CellKey(float x, float y) const
{
    const double cx = std::clamp(std::floor((double(x) - m_origin.x) / m_cellSize), 0.0, MAX_CELL_COORDINATE);
    const double cy = std::clamp(std::floor((double(y) - m_origin.y) / m_cellSize), 0.0, MAX_CELL_COORDINATE);
    return (std::uint64_t(cx) << 32) | std::uint64_t(cy);
}

void Broadphase::AddCandidate(std::uint32_t a, std::uint32_t b)
{
    const Shape* first = &m_shapes[a];
    const Shape* second = &m_shapes[b];
    // The stages pair kinds in a fixed order: the later kind of the list is the outer loop.
    if (first->kind < second->kind || (first->kind == second->kind && first->index > second->index))
        std::swap(first, second);
    static const Stage STAGES[3][3] = {
        {POLYGON_POLYGON, STAGE_COUNT, STAGE_COUNT},
        {CIRCLE_POLYGON, CIRCLE_CIRCLE, STAGE_COUNT},
        {BOX_POLYGON, BOX_CIRCLE, BOX_BOX},
    };
    m_pairs.push_back(MakeKey(STAGES[first->kind][second->kind], first->index, second->index));
}

void Broadphase::SortCells(std::uint64_t xMin, std::uint64_t xMax, std::uint64_t yMin, std::uint64_t yMax)
{
    if (m_cells.empty())
        return;
    // Entries are made shape by shape, so a stable sort by cell alone gives the order of (cell, shape).
    // Where the occupied grid is small beside the number of entries, counting does that in linear time.
    const std::uint64_t width = xMax - xMin + 1;
    const std::uint64_t height = yMax - yMin + 1;
    const std::uint64_t limit = COUNTING_SORT_CELLS_PER_ENTRY * m_cells.size() + COUNTING_SORT_MIN_CELLS;
    if (width > limit || height > limit || width * height > limit)
    {
        std::sort(m_cells.begin(), m_cells.end());
        return;
    }
    const auto dense = [&](std::uint64_t cell)
    { return static_cast<size_t>(((cell >> 32) - xMin) * height + ((cell & 0xFFFFFFFFu) - yMin)); };
    m_cellStart.assign(static_cast<size_t>(width * height) + 1, 0);
    for (const CellEntry& entry : m_cells)
        ++m_cellStart[dense(entry.cell) + 1];
    for (size_t c = 1; c < m_cellStart.size(); ++c)
        m_cellStart[c] += m_cellStart[c - 1];
    m_sortedCells.resize(m_cells.size());
    for (const CellEntry& entry : m_cells)
        m_sortedCells[m_cellStart[dense(entry.cell)]++] = entry;
    m_cells.swap(m_sortedCells);
}

void Broadphase::FindPairs()
{
    m_pairs.clear();
    m_cells.clear();
    m_unbinned.clear();
    m_sizes.clear();

    math::Vec2 origin(math::INF, math::INF);
    for (const Shape& shape : m_shapes)
    {
        if (!IsFinite(shape.min) || !IsFinite(shape.max))
            continue;
        m_sizes.push_back(std::max(shape.max.x - shape.min.x, shape.max.y - shape.min.y));
        origin = math::Vec2(std::min(origin.x, shape.min.x), std::min(origin.y, shape.min.y));
    }
    m_origin = origin;
    m_cellSize = 1.0f;
    if (!m_sizes.empty())
    {
        std::nth_element(m_sizes.begin(), m_sizes.begin() + m_sizes.size() / 2, m_sizes.end());
        const float cell = CELL_PER_MEDIAN_SIZE * m_sizes[m_sizes.size() / 2];
        if (std::isfinite(cell) && cell > 0.0f)
            m_cellSize = cell;
    }

    std::uint64_t xMin = ~std::uint64_t(0), xMax = 0, yMin = ~std::uint64_t(0), yMax = 0;
    for (std::uint32_t i = 0; i < m_shapes.size(); ++i)
    {
        const Shape& shape = m_shapes[i];
        if (!IsFinite(shape.min) || !IsFinite(shape.max))
        {
            m_unbinned.push_back(i);
            continue;
        }
        const std::uint64_t low = CellKey(shape.min.x, shape.min.y);
        const std::uint64_t high = CellKey(shape.max.x, shape.max.y);
        const std::uint64_t x0 = low >> 32, y0 = low & 0xFFFFFFFFu;
        const std::uint64_t x1 = high >> 32, y1 = high & 0xFFFFFFFFu;
        if (std::int64_t(x1 - x0 + 1) * std::int64_t(y1 - y0 + 1) > MAX_CELLS_PER_SHAPE)
        {
            m_unbinned.push_back(i);
            continue;
        }
        xMin = std::min(xMin, x0);
        xMax = std::max(xMax, x1);
        yMin = std::min(yMin, y0);
        yMax = std::max(yMax, y1);
        for (std::uint64_t x = x0; x <= x1; ++x)
            for (std::uint64_t y = y0; y <= y1; ++y)
                m_cells.push_back(CellEntry{(x << 32) | y, i});
    }
    SortCells(xMin, xMax, yMin, yMax);

    for (size_t begin = 0; begin < m_cells.size();)
    {
        const std::uint64_t cell = m_cells[begin].cell;
        size_t end = begin + 1;
        while (end < m_cells.size() && m_cells[end].cell == cell)
            ++end;
        for (size_t i = begin; i < end; ++i)
        {
            const Shape& a = m_shapes[m_cells[i].shape];
            for (size_t j = i + 1; j < end; ++j)
            {
                const Shape& b = m_shapes[m_cells[j].shape];
                if (!Overlap(a.min, a.max, b.min, b.max))
                    continue;
                // A pair that shares several cells is taken in one of them: the cell of the corner where
                // their overlap begins, which both cover.
                if (CellKey(std::max(a.min.x, b.min.x), std::max(a.min.y, b.min.y)) == cell)
                    AddCandidate(m_cells[i].shape, m_cells[j].shape);
            }
        }
        begin = end;
    }

    // Large shapes and shapes of no finite place meet every other shape; a pair of two of them comes once.
    for (size_t u = 0; u < m_unbinned.size(); ++u)
    {
        const std::uint32_t a = m_unbinned[u];
        const Shape& shapeA = m_shapes[a];
        const bool wildA = !IsFinite(shapeA.min) || !IsFinite(shapeA.max);
        for (std::uint32_t b = 0; b < m_shapes.size(); ++b)
        {
            if (b == a)
                continue;
            const bool unbinnedB = std::binary_search(m_unbinned.begin(), m_unbinned.end(), b);
            if (unbinnedB && b < a)
                continue;
            const Shape& shapeB = m_shapes[b];
            const bool wild = wildA || !IsFinite(shapeB.min) || !IsFinite(shapeB.max);
            if (wild || Overlap(shapeA.min, shapeA.max, shapeB.min, shapeB.max))
                AddCandidate(a, b);
        }
    }

    // The order of the nested loops: stage, then outer index, then inner index.
    std::sort(m_pairs.begin(), m_pairs.end());
}

Broadphase::Pair Broadphase::GetPair(size_t i) const
{
    const std::uint64_t key = m_pairs[i];
    return Pair{Stage(key >> STAGE_SHIFT), std::uint32_t((key >> OUTER_SHIFT) & INDEX_MASK),
                std::uint32_t(key & INDEX_MASK)};
}

} // namespace physics
