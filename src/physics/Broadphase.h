#pragma once

#include "math/Math.h"

#include <cstdint>
#include <vector>

namespace physics
{
class Box;
class Circle;
class Polygon;

// Finds the pairs of solid shapes that may touch, so that the collider tests those instead of every pair.
// Each shape gets a world box that holds everything its pair tests could find (a polygon's box is its
// distance map's, where its distance can be negative), widened by a rounding margin. Shapes are binned
// into a uniform grid whose cell is twice the median shape size; shapes much larger than a cell, and
// shapes whose box is not finite, meet every other shape without a test. The pairs come out sorted in the
// order of the collider's nested loops, stage by stage, so that the contacts come out identical.
class Broadphase
{
public:
    // The collider's pair stages, in the order it runs them.
    enum Stage : std::uint8_t
    {
        POLYGON_POLYGON,
        CIRCLE_CIRCLE,
        CIRCLE_POLYGON,
        BOX_BOX,
        BOX_POLYGON,
        BOX_CIRCLE,
        STAGE_COUNT
    };

    struct Pair
    {
        Stage stage;
        // Indices in the collider's lists: for a stage of two kinds, the first kind's; for one kind, the
        // lower index first.
        std::uint32_t outer;
        std::uint32_t inner;
    };

    void Clear();
    void AddPolygon(const Polygon& polygon);
    void AddCircle(const Circle& circle);
    void AddBox(const Box& box);
    // Finds the pairs among the shapes added since Clear. Indices are in the order of adding, by kind.
    void FindPairs();

    size_t GetPairCount() const { return m_pairs.size(); }
    Pair GetPair(size_t i) const;

private:
    enum Kind : std::uint8_t
    {
        POLYGON,
        CIRCLE,
        BOX
    };
    struct Shape
    {
        math::Vec2 min;
        math::Vec2 max;
        std::uint32_t index;
        Kind kind;
    };
    struct CellEntry
    {
        std::uint64_t cell;
        std::uint32_t shape;
        bool operator<(const CellEntry& other) const
        {
            return cell != other.cell ? cell < other.cell : shape < other.shape;
        }
    };

    void Add(Kind kind, math::Vec2 min, math::Vec2 max);
    void AddCandidate(std::uint32_t a, std::uint32_t b);
    std::uint64_t CellKey(float x, float y) const;
    // Sorts m_cells by cell, then shape; the entries lie in the given range of cell coordinates.
    void SortCells(std::uint64_t xMin, std::uint64_t xMax, std::uint64_t yMin, std::uint64_t yMax);

    std::vector<Shape> m_shapes;
    std::uint32_t m_counts[3] = {0, 0, 0};
    // Kept from step to step, so that a running world allocates nothing here.
    std::vector<CellEntry> m_cells;
    std::vector<CellEntry> m_sortedCells;
    std::vector<size_t> m_cellStart;
    std::vector<std::uint32_t> m_unbinned;
    std::vector<float> m_sizes;
    std::vector<std::uint64_t> m_pairs;
    math::Vec2 m_origin;
    float m_cellSize = 1.0f;
};

} // namespace physics
