#include "app/entities/ShapeGeometry.h"

#include "physics/Polygon.h"

#include <algorithm>
#include <cmath>

namespace app
{
const float SquareScale = 1.2f;
const float CakeSize = 0.0625f;

namespace
{
// The edge of the circle picture is smoothed over this many units of the unit circle: 2.4 / 1024, one texel.
const float CIRCLE_EDGE_SMOOTHING = 0.00234375f;
} // namespace

std::vector<math::Vec2> CalcVecs(int n)
{
    std::vector<math::Vec2> vecs;
    vecs.reserve(n + 1);
    for (int i = 0; i <= n; ++i)
    {
        const float t = 2.0f * math::PIf * float(i) / float(n);
        vecs.push_back(math::Vec2(std::cos(t), -std::sin(t)));
    }
    return vecs;
}

const std::vector<math::Vec2>& CircleVecs()
{
    static const std::vector<math::Vec2> vecs = CalcVecs(CIRCLE_SEGMENTS);
    return vecs;
}

void CircleFanRange(bool cake, int& first, int& last)
{
    // Half the slice lies on each side of the x axis.
    const int skip = cake ? int(std::floor(CIRCLE_SEGMENTS * CakeSize * 0.5f + 0.5f)) : 0;
    first = skip;
    last = CIRCLE_SEGMENTS - skip;
}

std::vector<math::Vec2> BoxQuad(math::Vec2 half)
{
    return {math::Vec2(-half.x, -half.y), math::Vec2(-half.x, half.y), math::Vec2(half.x, half.y),
            math::Vec2(half.x, -half.y)};
}

bool BoxInside(math::Vec2 half, float borderWidth, math::Vec2& inside)
{
    inside = half - math::Vec2(borderWidth, borderWidth);
    return inside.x > 0.0f && inside.y > 0.0f;
}

float Smooth(float s, float v)
{
    return std::clamp(v / s + 0.5f, 0.0f, 1.0f);
}

std::vector<float> CircleTexture(int size, bool cake)
{
    std::vector<float> texels(size_t(size) * size);
    for (int j = 0; j < size; ++j)
        for (int i = 0; i < size; ++i)
        {
            const math::Vec2 p((i + 0.5f) / size * 2.0f * SquareScale - SquareScale,
                               (j + 0.5f) / size * 2.0f * SquareScale - SquareScale);
            const float r = p.Length();
            float a = Smooth(CIRCLE_EDGE_SMOOTHING, 1.0f - r);
            // The slice's sides are smoothed by the same width on the screen, so by an angle that grows
            // towards the centre.
            if (cake)
                a *=
                    Smooth(CIRCLE_EDGE_SMOOTHING / r, std::fabs(std::atan2(p.y, p.x)) - math::PIf * CakeSize);
            texels[size_t(j) * size + i] = a;
        }
    return texels;
}

namespace
{
// The inner edge of the selection ring, as a share of its radius.
const float RING_INNER = 0.7f;

// Alpha texels of a function of the distance from the middle, that distance in units of the half side.
template <class F> std::vector<float> RadialTexture(int size, F alpha)
{
    std::vector<float> texels(size_t(size) * size);
    for (int j = 0; j < size; ++j)
        for (int i = 0; i < size; ++i)
        {
            const math::Vec2 p((i + 0.5f) / size * 2.0f - 1.0f, (j + 0.5f) / size * 2.0f - 1.0f);
            texels[size_t(j) * size + i] = alpha(p.Length(), 2.0f / size);
        }
    return texels;
}
} // namespace

std::vector<float> PenTexture(int size)
{
    return RadialTexture(size, [](float r, float texel) { return Smooth(texel, 1.0f - r); });
}

std::vector<float> RingTexture(int size)
{
    return RadialTexture(size, [](float r, float texel)
                         { return Smooth(texel, 1.0f - r) * Smooth(texel, r - RING_INNER); });
}

std::vector<math::Vec2> PlaneSegment(const math::Vec2 corners[4], const float dists[4], float lo, float hi)
{
    std::vector<math::Vec2> fan;
    for (int i = 0; i < 4; ++i)
    {
        const int k = (i + 1) % 4;
        const float d0 = dists[i];
        const float d1 = dists[k];
        if (lo <= d0 && d0 <= hi)
            fan.push_back(corners[i]);
        if (d0 == d1)
            continue;
        // The two crossings of the edge, in order of rising t.
        float ts[2] = {(hi - d0) / (d1 - d0), (lo - d0) / (d1 - d0)};
        if (ts[1] < ts[0])
            std::swap(ts[0], ts[1]);
        for (float t : ts)
            if (t > 0.0f && t < 1.0f)
                fan.push_back(corners[i] + (corners[k] - corners[i]) * t);
    }
    return fan;
}

float PolygonMaxDist(const physics::Polygon& polygon)
{
    const math::OBB2D& box = polygon.GetMapBox();
    return 0.04f * 2.0f * std::max(box.halfExtent[0], box.halfExtent[1]);
}

std::vector<float> PolygonDistanceTexture(const physics::Polygon& polygon, float maxDist)
{
    const util::Array2D<float>& map = polygon.GetDistanceMap();
    std::vector<float> texels(size_t(map.GetWidth()) * map.GetHeight());
    for (unsigned j = 0; j < map.GetHeight(); ++j)
        for (unsigned i = 0; i < map.GetWidth(); ++i)
            texels[size_t(j) * map.GetWidth() + i] =
                std::clamp((map(i, j) / maxDist + 1.0f) * 0.5f, 0.0f, 1.0f);
    return texels;
}

void PolygonMapCorners(const physics::Polygon& polygon, math::Vec2 corners[4])
{
    polygon.GetMapBox().CalcCorners(corners);
}

math::Vec2 PolygonMapTexCoord(int corner)
{
    // The map box's corners run +a0+a1, +a0-a1, -a0-a1, -a0+a1; texel columns follow a0 and rows a1.
    static const math::Vec2 texCoords[4] = {math::Vec2(1, 1), math::Vec2(1, 0), math::Vec2(0, 0),
                                            math::Vec2(0, 1)};
    return texCoords[corner & 3];
}

float PolygonInsideThreshold(float borderWidth, float maxDist)
{
    return 0.5f - 0.5f * borderWidth / maxDist;
}

} // namespace app
