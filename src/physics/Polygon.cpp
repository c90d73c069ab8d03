#include "physics/Polygon.h"

#include "logging/Exception.h"
#include "logging/Log.h"
#include "physics/CollisionDetection.h"
#include "physics/SPH.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <queue>

namespace physics
{
namespace
{
const unsigned int MAP_CELLS = 64;
// Water particles are tested as points against a grown shape (0.1 radius), so the field must be valid at
// least this far outside the outline.
const float WATER_MARGIN_FACTOR = 0.1f;

// Most points that AssertMaxDist puts into one gap; far more than any sketch needs.
const int MAX_GAP_POINTS = 100000;

// A grid cell while the distance map is built.
struct BuildCell
{
    const Linesegment* closest = nullptr;
    float distSq = math::INF;
    bool done = false;
};

// Queue entry: squared distance, then cell index (its address order) at a tie.
struct CellDistPair
{
    float distSq;
    unsigned int cell;

    bool operator>(const CellDistPair& o) const
    {
        return distSq > o.distSq || (distSq == o.distSq && cell > o.cell);
    }
};

using CellQueue = std::priority_queue<CellDistPair, std::vector<CellDistPair>, std::greater<CellDistPair>>;

void UpdateQueue(CellQueue& queue, std::vector<BuildCell>& cells, unsigned int cell, const Linesegment* edge,
                 const math::Vec2& centre)
{
    const float distSq = edge->DistanceSq(centre);
    BuildCell& c = cells[cell];
    if (distSq < c.distSq)
    {
        c.closest = edge;
        c.distSq = distSq;
        queue.push(CellDistPair{distSq, cell});
    }
}

// Drops each point at no distance from its predecessor (equal, or so close that the squared distance
// underflows), then the last points while they repeat the first.
void DropRepeats(std::vector<math::Vec2>& points)
{
    size_t kept = 0;
    for (size_t i = 0; i < points.size(); ++i)
        if (kept == 0 || math::DistanceSq(points[i], points[kept - 1]) > 0.0f)
            points[kept++] = points[i];
    points.resize(kept);
    while (points.size() > 1 && !(math::DistanceSq(points.back(), points.front()) > 0.0f))
        points.pop_back();
}

// Edge i runs from vertex i to vertex i + 1, the last one closing the loop.
void BuildLines(const std::vector<math::Vec2>& vertices, std::vector<Linesegment>& lines)
{
    const size_t n = vertices.size();
    lines.clear();
    lines.reserve(n);
    for (size_t i = 0; i < n; ++i)
        lines.push_back(Linesegment(vertices[i], vertices[(i + 1) % n]));
}

bool SegmentsMayTouch(const Linesegment& s, const Linesegment& t)
{
    return !(std::max(s.a.y, s.b.y) < std::min(t.a.y, t.b.y) ||
             std::max(t.a.y, t.b.y) < std::min(s.a.y, s.b.y));
}

// Whether any two edges cross. Edges are swept in order of their left end, so that only pairs whose x
// ranges overlap are tested exactly: the same answer as testing all pairs i < j, at far lower cost.
bool HasSelfIntersection(const std::vector<Linesegment>& lines)
{
    const size_t n = lines.size();
    std::vector<unsigned int> order(n);
    for (size_t i = 0; i < n; ++i)
        order[i] = static_cast<unsigned int>(i);
    auto minX = [&](unsigned int i) { return std::min(lines[i].a.x, lines[i].b.x); };
    auto maxX = [&](unsigned int i) { return std::max(lines[i].a.x, lines[i].b.x); };
    std::sort(order.begin(), order.end(), [&](unsigned int i, unsigned int j) { return minX(i) < minX(j); });
    for (size_t oi = 0; oi < n; ++oi)
    {
        const unsigned int i = order[oi];
        const float right = maxX(i);
        for (size_t oj = oi + 1; oj < n && minX(order[oj]) <= right; ++oj)
        {
            const unsigned int j = order[oj];
            const Linesegment& first = lines[std::min(i, j)];
            const Linesegment& second = lines[std::max(i, j)];
            if (SegmentsMayTouch(first, second) && Intersects(first, second))
                return true;
        }
    }
    return false;
}
} // namespace

math::TVector2<unsigned int> CalcMapSize(const Polygon&)
{
    return math::TVector2<unsigned int>(MAP_CELLS, MAP_CELLS);
}

Polygon::Polygon(const std::vector<math::Vec2>& points)
    : Geom(Kind::Polygon), m_localBC(BoundingCircle(math::Vec2(0.0f, 0.0f), -1.0f))
{
    // A point that is no number (from a damaged scene file, say) has no place in an outline, and would leave
    // the edge sort below without an order.
    const bool finite =
        std::all_of(points.begin(), points.end(), [](const math::Vec2& v) { return math::IsFinite(v); });
    m_vertices = points;
    DropRepeats(m_vertices);
    if (m_vertices.size() < 3 || !finite)
        QLEX_THROW(BadDataException("Bad polygon"));

    // Crossings don't depend on position or orientation, so the input loop is tested as it came: a bow-tie
    // has no area to speak of, and is refused for what it is.
    BuildLines(m_vertices, m_lines);
    if (HasSelfIntersection(m_lines))
        QLEX_THROW(BadDataException("Self-intersecting polygon"));

    const math::Vec2 centroid = CalcAttribs();
    // A shape without area (all points on one line) has no centroid and no mass.
    if (!(m_area > 0.0f) || !math::IsFinite(centroid))
        QLEX_THROW(BadDataException("Bad polygon"));
    // Points closer together than float tells apart once the centroid is taken off are one point now. Left
    // in, they would make an edge without length, which every cell would find at distance 0.
    DropRepeats(m_vertices);
    if (m_vertices.size() < 3)
        QLEX_THROW(BadDataException("Bad polygon"));
    BuildLines(m_vertices, m_lines);
    const size_t n = m_vertices.size();

    m_localBox = math::OBB2D::Build(m_vertices.data(), static_cast<int>(n));
    m_localBC = BoundingCircle::BuildBest(static_cast<int>(n), m_vertices.data());
    m_mapSize = CalcMapSize(*this);

    float minPad = WATER_MARGIN_FACTOR * SPH::GetInstancePtr()->m_radius;
    // Water of no finite size can't be served by any margin; the shape still gets its grid.
    if (!math::IsFiniteFloat(minPad))
        minPad = 0.0f;
    m_mapBox = m_localBox;
    float scale[2];
    for (int i = 0; i < 2; ++i)
    {
        const float e = m_localBox.halfExtent[i];
        const unsigned int size = i == 0 ? m_mapSize.x : m_mapSize.y;
        const float pad = std::max(2.0f * e / size, minPad);
        m_mapBox.halfExtent[i] = e + 2.0f * pad;
        scale[i] = size / (2.0f * m_mapBox.halfExtent[i]);
        // A sliver thinner than float can resolve (possible with no water margin) has no grid to bake.
        if (!math::IsFiniteFloat(scale[i]))
            QLEX_THROW(BadDataException("Bad polygon"));
    }
    // Cell coordinates: into the map box's frame, shifted so that the box spans 0..2e, scaled to cells,
    // and shifted by half a cell so that cell (i, j) has its centre at (i, j).
    m_localToMap = math::TMatrix3<float>();
    for (int i = 0; i < 2; ++i)
    {
        const math::Vec2& axis = m_mapBox.axis[i];
        m_localToMap.m[i * 3 + 0] = axis.x * scale[i];
        m_localToMap.m[i * 3 + 1] = axis.y * scale[i];
        m_localToMap.m[i * 3 + 2] =
            (m_mapBox.halfExtent[i] - math::Dot(m_mapBox.center, axis)) * scale[i] - 0.5f;
    }
    m_mapToLocal = math::Inverted(m_localToMap);

    CalcDistMap();
    CalcNormalMap();
    SetWorldPose(math::Mat2D::Translation(centroid));
}

Polygon::Polygon(const Polygon& other)
    : Geom(other), m_vertices(other.m_vertices), m_worldVertices(other.m_worldVertices),
      m_lines(other.m_lines), m_worldLines(other.m_worldLines), m_localBC(other.m_localBC),
      m_worldBC(other.m_worldBC), m_worldAABB(other.m_worldAABB), m_localBox(other.m_localBox),
      m_worldBox(other.m_worldBox), m_mapBox(other.m_mapBox), m_localToMap(other.m_localToMap),
      m_mapToLocal(other.m_mapToLocal), m_mapSize(other.m_mapSize), m_distMap(other.m_distMap),
      m_perimeterMap(other.m_perimeterMap), m_normalMap(other.m_normalMap), m_area(other.m_area),
      m_inertia(other.m_inertia), m_perimeter(other.m_perimeter)
{
}

util::SharedPtr<Polygon> Polygon::Clone() const
{
    util::SharedPtr<Polygon> copy = QLEX_NEW new Polygon(*this);
    copy->CopyFrom(*this);
    return copy;
}

util::SharedPtr<Polygon> Polygon::CreateBox(math::Vec2 a, math::Vec2 b)
{
    std::vector<math::Vec2> points;
    AddPolygonSide(points, math::Vec2(a.x, a.y), math::Vec2(b.x, a.y));
    AddPolygonSide(points, math::Vec2(b.x, a.y), math::Vec2(b.x, b.y));
    AddPolygonSide(points, math::Vec2(b.x, b.y), math::Vec2(a.x, b.y));
    AddPolygonSide(points, math::Vec2(a.x, b.y), math::Vec2(a.x, a.y));
    return QLEX_NEW new Polygon(points);
}

util::SharedPtr<Polygon> Polygon::Scale(math::Vec2 factor) const
{
    if (factor.x == 1.0f && factor.y == 1.0f)
        return Clone();
    // Local points go to world-aligned axes, are scaled, and come back: R(-a) S R(a).
    const float angle = GetAngle();
    const math::Mat2D toWorldAxes = math::Mat2D::Rotation(angle);
    const math::Mat2D back = math::Mat2D::Rotation(-angle);
    std::vector<math::Vec2> points;
    points.reserve(m_vertices.size());
    for (const math::Vec2& v : m_vertices)
    {
        math::Vec2 w = math::TransformNormal(toWorldAxes, v);
        w = math::Vec2(w.x * factor.x, w.y * factor.y);
        points.push_back(math::TransformNormal(back, w));
    }
    if (factor.x * factor.y < 0.0f)
        std::reverse(points.begin(), points.end());
    util::SharedPtr<Polygon> scaled = QLEX_NEW new Polygon(points);
    scaled->CopyFrom(*this);
    return scaled;
}

math::Vec2 Polygon::CalcAttribs()
{
    const size_t n = m_vertices.size();
    // Sums over the vertices taken relative to the first one: the formulas don't depend on the origin, but
    // the rounding does. Far from the world's origin the cross products of raw positions are huge next to
    // the area and cancel to noise, which would put the centre of mass centimetres off at 100 m.
    const math::Vec2 origin = m_vertices[0];
    float twiceArea = 0.0f;
    math::Vec2 centroidSum(0.0f, 0.0f);
    for (size_t i = 0; i < n; ++i)
    {
        const math::Vec2 a = m_vertices[i] - origin;
        const math::Vec2 b = m_vertices[(i + 1) % n] - origin;
        const float cross = math::Cross(a, b);
        twiceArea += cross;
        centroidSum += (a + b) * cross;
    }
    float area = twiceArea / 2.0f;
    const math::Vec2 centroid = origin + centroidSum / (6.0f * area);
    if (area < 0.0f)
    {
        // Clockwise input: the interior must lie on the left of each edge.
        area = -area;
        std::reverse(m_vertices.begin(), m_vertices.end());
    }
    for (math::Vec2& v : m_vertices)
        v -= centroid;

    float inertiaSum = 0.0f;
    for (size_t i = 0; i < n; ++i)
    {
        const math::Vec2& a = m_vertices[i];
        const math::Vec2& b = m_vertices[(i + 1) % n];
        inertiaSum += math::Cross(a, b) * (math::Dot(a, a) + math::Dot(a, b) + math::Dot(b, b));
    }
    float inertia = inertiaSum / (12.0f * area);
    if (area < 0.0f || inertia < 0.0f)
        Log(logging::Error, "Bad area or mass in polygon");
    m_area = std::fabs(area);
    m_inertia = std::fabs(inertia);
    return centroid;
}

math::Vec2 Polygon::LocalToMap(const math::Vec2& p) const
{
    const float* m = m_localToMap.m;
    return math::Vec2(m[0] * p.x + m[1] * p.y + m[2], m[3] * p.x + m[4] * p.y + m[5]);
}

math::Vec2 Polygon::MapToWorld(int i, int j) const
{
    const float* m = m_mapToLocal.m;
    const float x = static_cast<float>(i);
    const float y = static_cast<float>(j);
    return math::Vec2(m[0] * x + m[1] * y + m[2], m[3] * x + m[4] * y + m[5]);
}

void Polygon::CalcDistMap()
{
    const unsigned int w = m_mapSize.x;
    const unsigned int h = m_mapSize.y;
    std::vector<BuildCell> cells(w * h);
    std::vector<CellDistPair> storage;
    storage.reserve(w * h * 4);
    CellQueue queue(std::greater<CellDistPair>(), std::move(storage));

    // Seeds: the cells under each edge know their closest edge first.
    std::vector<math::TVector2<int>> line;
    for (const Linesegment& edge : m_lines)
    {
        const math::Vec2 a = LocalToMap(edge.a);
        const math::Vec2 b = LocalToMap(edge.b);
        const math::TVector2<int> p0(static_cast<int>(std::floor(a.x + 0.5f)),
                                     static_cast<int>(std::floor(a.y + 0.5f)));
        const math::TVector2<int> p1(static_cast<int>(std::floor(b.x + 0.5f)),
                                     static_cast<int>(std::floor(b.y + 0.5f)));
        line.clear();
        Bresenham(p0, p1, line);
        for (const math::TVector2<int>& c : line)
        {
            if (c.x < 0 || c.y < 0 || c.x >= static_cast<int>(w) || c.y >= static_cast<int>(h))
                continue;
            UpdateQueue(queue, cells, c.x + c.y * w, &edge, MapToWorld(c.x, c.y));
        }
    }

    // Vertices lie inside the grid, so some cell is seeded; without one, no cell would learn an edge.
    if (queue.empty())
        QLEX_THROW(BadDataException("Bad polygon"));

    // Propagation: the closest edge spreads outward from the outline, nearest cells first.
    while (!queue.empty())
    {
        const CellDistPair top = queue.top();
        queue.pop();
        BuildCell& cell = cells[top.cell];
        if (cell.done)
            continue;
        cell.done = true;
        QLEX_ASSERT(cell.closest);
        const int cx = static_cast<int>(top.cell % w);
        const int cy = static_cast<int>(top.cell / w);
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx)
            {
                const int x = cx + dx;
                const int y = cy + dy;
                if ((dx == 0 && dy == 0) || x < 0 || y < 0 || x >= static_cast<int>(w) ||
                    y >= static_cast<int>(h))
                    continue;
                const unsigned int index = x + y * w;
                if (!cells[index].done)
                    UpdateQueue(queue, cells, index, cell.closest, MapToWorld(x, y));
            }
    }

    // Outward vertex normals: the bisector of the two edges meeting there, turned clockwise.
    const size_t n = m_vertices.size();
    std::vector<math::Vec2> vertexNormals(n);
    for (size_t i = 0; i < n; ++i)
    {
        math::Vec2 in = m_lines[(i + n - 1) % n].b - m_lines[(i + n - 1) % n].a;
        math::Vec2 out = m_lines[i].b - m_lines[i].a;
        in.Normalize();
        out.Normalize();
        math::Vec2 sum = in + out;
        sum.Normalize();
        vertexNormals[i] = math::Rot90CW(sum);
    }

    std::vector<float> arcLength(n + 1, 0.0f);
    for (size_t i = 0; i < n; ++i)
        arcLength[i + 1] = arcLength[i] + (m_lines[i].b - m_lines[i].a).Length();
    m_perimeter = arcLength[n];

    m_distMap = util::Array2D<float>(w, h);
    m_perimeterMap = util::Array2D<float>(w, h);
    for (unsigned int x = 0; x < w; ++x)
        for (unsigned int y = 0; y < h; ++y)
        {
            const BuildCell& cell = cells[x + y * w];
            const math::Vec2 p = MapToWorld(x, y);
            const size_t edge = static_cast<size_t>(cell.closest - m_lines.data());
            float t;
            const math::Vec2 q = cell.closest->ClosestPoint(p, t);
            float d = (p - q).Length();
            if (t == 0.0f || t == 1.0f)
            {
                // Nearest at a corner: the corner's own normal tells inside from outside.
                const math::Vec2& normal = vertexNormals[t == 0.0f ? edge : (edge + 1) % n];
                if (math::Dot(normal, p - q) < 0.0f)
                    d = -d;
            }
            else if (cell.closest->IsPointOnTheLeft(p))
            {
                d = -d;
            }
            m_distMap(x, y) = d;
            m_perimeterMap(x, y) = (1.0f - t) * arcLength[edge] + t * arcLength[edge + 1];
        }

    if (!(m_distMap(0, 0) > 0.0f))
        Log(logging::Error, "Bad distance map generated, a polygon is probably looking strange");
}

void Polygon::CalcNormalMap()
{
    const unsigned int w = m_mapSize.x;
    const unsigned int h = m_mapSize.y;
    m_normalMap = util::Array2D<math::Vec2>(w, h);
    const util::Array2D<float>& d = m_distMap;
    // The gradient in cells goes to the local frame through the transpose of the local-to-map Jacobian
    // (the chain rule), which keeps it perpendicular to the outline also when the cells are not square.
    const float* m = m_localToMap.m;
    for (unsigned int x = 0; x < w; ++x)
        for (unsigned int y = 0; y < h; ++y)
        {
            float gx;
            if (x == 0)
                gx = 2.0f * (d(1, y) - d(0, y));
            else if (x == w - 1)
                gx = 2.0f * (d(w - 1, y) - d(w - 2, y));
            else
                gx = d(x + 1, y) - d(x - 1, y);
            float gy;
            if (y == 0)
                gy = 2.0f * (d(x, 1) - d(x, 0));
            else if (y == h - 1)
                gy = 2.0f * (d(x, h - 1) - d(x, h - 2));
            else
                gy = d(x, y + 1) - d(x, y - 1);
            math::Vec2 n(m[0] * gx + m[3] * gy, m[1] * gx + m[4] * gy);
            n.Normalize();
            m_normalMap(x, y) = n;
        }
}

float Polygon::DistancePolygon(const math::Vec2& p) const
{
    if (m_mapBox.Distance(p) <= 0.0f)
    {
        const math::Vec2 c = LocalToMap(p);
        return m_distMap.Sample(c.x, c.y);
    }
    // Outside the grid the box distance is a lower estimate that stays positive.
    return m_localBox.Distance(p);
}

math::Vec2 Polygon::NormalPolygon(const math::Vec2& p) const
{
    if (!m_mapBox.Contains(p))
        return math::Vec2(0.0f, 0.0f);
    const math::Vec2 c = LocalToMap(p);
    math::Vec2 n = m_normalMap.Sample(c.x, c.y);
    n.Normalize();
    return n;
}

float Polygon::DistanceWorld(const math::Vec2& p) const
{
    return DistancePolygon(math::TransformCoordinate(m_worldToGeom, p));
}

math::Vec2 Polygon::NormalWorld(const math::Vec2& p) const
{
    return math::TransformNormal(m_pose, NormalPolygon(math::TransformCoordinate(m_worldToGeom, p)));
}

math::Vec2 Polygon::GetClosestEdge(math::Vec2 p) const
{
    math::Vec2 best(0.0f, 0.0f);
    float bestDistSq = math::INF;
    for (const Linesegment& line : m_worldLines)
    {
        const math::Vec2 q = line.ClosestPoint(p);
        const float distSq = math::DistanceSq(p, q);
        if (distSq < bestDistSq)
        {
            bestDistSq = distSq;
            best = q;
        }
    }
    return best;
}

void Polygon::SetWorldPose(const math::Mat2D& m)
{
    Geom::SetWorldPose(m);
    m_worldBox = math::Transform(m, m_localBox);
    m_worldBC = m_localBC.Transform(m);
    const size_t n = m_vertices.size();
    m_worldVertices.resize(n);
    for (size_t i = 0; i < n; ++i)
        m_worldVertices[i] = math::TransformCoordinate(m, m_vertices[i]);
    m_worldLines.resize(n);
    m_worldAABB = BoundingBox2::Empty();
    for (size_t i = 0; i < n; ++i)
    {
        m_worldLines[i] = Linesegment(m_worldVertices[i], m_worldVertices[(i + 1) % n]);
        m_worldAABB.Include(m_worldLines[i].a);
        m_worldAABB.Include(m_worldLines[i].b);
    }
}

bool Polygon::Contains(const Polygon& other) const
{
    if (!RoughIntersectTest(*this, other))
        return false;
    for (const math::Vec2& v : other.m_worldVertices)
        if (DistanceWorld(v) >= 0.0f)
            return false;
    for (const math::Vec2& v : m_worldVertices)
        if (other.DistanceWorld(v) < 0.0f)
            return false;
    return true;
}

int Polygon::IntersectCount(const std::vector<Linesegment>& segments) const
{
    return physics::IntersectCount(segments, m_worldLines);
}

std::vector<math::Vec2> AssertMaxDist(const std::vector<math::Vec2>& points, float maxDist)
{
    std::vector<math::Vec2> ret;
    if (points.empty())
        return ret;
    ret.push_back(points.front());
    // A spacing of zero or no number can't be met by any finite list: the points stay as they are.
    const bool fill = maxDist > 0.0f;
    const size_t n = points.size();
    for (size_t i = 0; i < n; ++i)
    {
        const math::Vec2& a = points[i];
        const math::Vec2& b = points[(i + 1) % n];
        const float d = math::Distance(a, b);
        if (d == 0.0f)
            continue;
        if (fill && d > maxDist)
        {
            // Bounded, so that a spacing far below the size of the shape can't exhaust the memory.
            const float wanted = std::ceil(d / maxDist) - 1.0f;
            const int extra = static_cast<int>(std::min(wanted, static_cast<float>(MAX_GAP_POINTS)));
            for (int k = 1; k <= extra; ++k)
                ret.push_back(math::Lerp(a, b, static_cast<float>(k) / (extra + 1)));
        }
        ret.push_back(b);
    }
    // The loop closed on the first point, which is already at the front.
    if (ret.size() > 1 && ret.front() == ret.back())
        ret.pop_back();
    return ret;
}

std::vector<math::Vec2> AssertMinDist(const std::vector<math::Vec2>& points, float minDist)
{
    std::vector<math::Vec2> ret;
    if (points.empty())
        return ret;
    ret.push_back(points.front());
    for (size_t i = 1; i < points.size(); ++i)
        if (math::Distance(points[i], ret.back()) > minDist)
            ret.push_back(points[i]);
    if (ret.size() > 1 && math::Distance(ret.front(), ret.back()) < minDist)
    {
        ret.front() = (ret.front() + ret.back()) * 0.5f;
        ret.pop_back();
    }
    return ret;
}

void AddPolygonSide(std::vector<math::Vec2>& points, const math::Vec2& a, const math::Vec2& b)
{
    points.push_back(a);
    points.push_back(math::Lerp(a, b, 1.0f / 32.0f));
    points.push_back(math::Lerp(a, b, 0.5f));
    points.push_back(math::Lerp(a, b, 31.0f / 32.0f));
}

void Bresenham(math::TVector2<int> p0, math::TVector2<int> p1, std::vector<math::TVector2<int>>& out)
{
    const int dx = std::abs(p1.x - p0.x);
    const int dy = -std::abs(p1.y - p0.y);
    const int sx = p0.x < p1.x ? 1 : -1;
    const int sy = p0.y < p1.y ? 1 : -1;
    int err = dx + dy;
    for (;;)
    {
        out.push_back(p0);
        if (p0.x == p1.x && p0.y == p1.y)
            break;
        const int e2 = 2 * err;
        if (e2 >= dy)
        {
            err += dy;
            p0.x += sx;
        }
        if (e2 <= dx)
        {
            err += dx;
            p0.y += sy;
        }
    }
}

} // namespace physics
