#pragma once

#include "physics/Geom.h"
#include "physics/Linesegment.h"
#include "util/Array2D.h"

#include <vector>

namespace physics
{
// Any simple polygon, convex or not. Construction bakes a signed distance field, its gradient and the
// arc length of the nearest outline point on a fixed grid around the shape, so that every later inside,
// distance and normal query is a constant-time bilinear lookup whatever the number of vertices.
class Polygon final : public Geom
{
public:
    // Throws BadDataException "Bad polygon" (fewer than three distinct points, a point that is no number, no
    // area, or too thin for a grid) and "Self-intersecting polygon".
    explicit Polygon(const std::vector<math::Vec2>& points);
    Polygon(const Polygon& other);

    util::SharedPtr<Polygon> Clone() const;
    // A rectangle from two opposite corners, with extra points near the corners to keep them sharp.
    static util::SharedPtr<Polygon> CreateBox(math::Vec2 a, math::Vec2 b);
    // Scaled along the world's axes about the polygon's origin; a negative product mirrors.
    util::SharedPtr<Polygon> Scale(math::Vec2 factor) const;

    // Queries in the polygon's own frame.
    float DistancePolygon(const math::Vec2& p) const;
    math::Vec2 NormalPolygon(const math::Vec2& p) const;

    float DistanceWorld(const math::Vec2& p) const override;
    math::Vec2 NormalWorld(const math::Vec2& p) const override;
    float Area() const override { return m_area; }
    float InertiaSansMass() const override { return m_inertia; }
    // Walks the edges: for tools, never for the solver.
    math::Vec2 GetClosestEdge(math::Vec2 p) const override;
    BoundingBox2 GetAABBWorld() const override { return m_worldAABB; }
    math::OBB2D GetOBBWorld() const override { return m_worldBox; }
    BoundingCircle GetBCWorld() const override { return m_worldBC; }
    void SetWorldPose(const math::Mat2D& m) override;

    bool Contains(const Polygon& other) const;
    int IntersectCount(const std::vector<Linesegment>& segments) const;

    // The local-frame position of the centre of cell (i, j).
    math::Vec2 MapToWorld(int i, int j) const;

    const std::vector<math::Vec2>& GetVertices() const { return m_vertices; }
    const std::vector<math::Vec2>& GetWorldVertices() const { return m_worldVertices; }
    const std::vector<Linesegment>& GetLines() const { return m_lines; }
    const std::vector<Linesegment>& GetWorldLines() const { return m_worldLines; }
    const math::OBB2D& GetLocalOBB() const { return m_localBox; }
    const math::OBB2D& GetWorldOBB() const { return m_worldBox; }
    const math::OBB2D& GetMapBox() const { return m_mapBox; }
    const math::TVector2<unsigned int>& GetMapSize() const { return m_mapSize; }
    const util::Array2D<float>& GetDistanceMap() const { return m_distMap; }
    const util::Array2D<float>& GetPerimeterMap() const { return m_perimeterMap; }
    const util::Array2D<math::Vec2>& GetNormalMap() const { return m_normalMap; }
    float GetPerimeter() const { return m_perimeter; }

private:
    math::Vec2 CalcAttribs();
    void CalcDistMap();
    void CalcNormalMap();
    math::Vec2 LocalToMap(const math::Vec2& p) const;

    std::vector<math::Vec2> m_vertices;
    std::vector<math::Vec2> m_worldVertices;
    std::vector<Linesegment> m_lines;
    std::vector<Linesegment> m_worldLines;
    BoundingCircle m_localBC;
    BoundingCircle m_worldBC;
    BoundingBox2 m_worldAABB;
    math::OBB2D m_localBox;
    math::OBB2D m_worldBox;
    math::OBB2D m_mapBox;
    math::TMatrix3<float> m_localToMap;
    math::TMatrix3<float> m_mapToLocal;
    math::TVector2<unsigned int> m_mapSize;
    util::Array2D<float> m_distMap;
    util::Array2D<float> m_perimeterMap;
    util::Array2D<math::Vec2> m_normalMap;
    float m_area = 0.0f;
    float m_inertia = 0.0f;
    float m_perimeter = 0.0f;
};

// The grid size of every polygon's maps.
math::TVector2<unsigned int> CalcMapSize(const Polygon& polygon);

// Points of a closed loop with extra points so that no gap exceeds maxDist (a maxDist that isn't above 0
// adds none).
std::vector<math::Vec2> AssertMaxDist(const std::vector<math::Vec2>& points, float maxDist);
// Points of a closed loop thinned so that consecutive points are more than minDist apart.
std::vector<math::Vec2> AssertMinDist(const std::vector<math::Vec2>& points, float minDist);
// Appends a and the points at 1/32, 1/2 and 31/32 of the way to b.
void AddPolygonSide(std::vector<math::Vec2>& points, const math::Vec2& a, const math::Vec2& b);
// The grid cells of the line from p0 to p1, both ends included.
void Bresenham(math::TVector2<int> p0, math::TVector2<int> p1, std::vector<math::TVector2<int>>& out);

} // namespace physics
