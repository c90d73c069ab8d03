#include "physics/CollisionDetection.h"

#include "logging/Log.h"
#include "physics/Body.h"
#include "physics/Box.h"
#include "physics/Circle.h"
#include "physics/Contact.h"
#include "physics/Particle.h"
#include "physics/Plane.h"
#include "physics/Polygon.h"
#include "physics/SPH.h"
#include "util/Profiler.h"
#include "util/StringUtil.h"

#include <algorithm>
#include <cmath>

namespace physics
{
namespace
{
// The fraction of a particle's radius within which it meets a shape.
const float WATER_CONTACT_FACTOR = 0.1f;
// Sub id of the one contact of a circle whose centre is inside a polygon.
const std::uint32_t SUB_CENTRE_INSIDE = 0xFFFFFFFFu;
// Contacts per step at most: some ten thousand bodies at rest. Shapes heaped on one spot would otherwise
// meet every other shape, square in time and memory, and the solver could not serve them anyway.
const size_t MAX_CONTACTS = 200000;
} // namespace

bool ShouldCollide(const AbstractBody* bodyA, const Geom& geomA, const AbstractBody* bodyB, const Geom& geomB)
{
    if (geomA.GetHeteroCollide() && geomB.GetHeteroCollide() &&
        geomA.GetCollideSet() == geomB.GetCollideSet() && geomA.GetWaterCollide() == geomB.GetWaterCollide())
        return false;
    if ((geomA.GetCollideSet() & geomB.GetCollideSet() & Geom::COLLIDE_MASK) == 0)
        return false;
    if (!bodyA || !bodyB || bodyA == bodyB)
        return false;
    if (bodyA->IsImmovable() && bodyB->IsImmovable())
        return false;
    return !geomA.HasNoCollide(const_cast<Geom*>(&geomB));
}

bool ShouldCollide(const Geom& geomA, const Geom& geomB)
{
    return ShouldCollide(geomA.GetBody(), geomA, geomB.GetBody(), geomB);
}

void AddContact(ContactSink& out, Geom& geomA, Geom& geomB, std::uint32_t subId, const math::Vec2& point,
                const math::Vec2& normal, float depth)
{
    if (!(math::IsFinite(point) && math::IsFinite(normal) && math::IsFiniteFloat(depth)))
        Log(logging::Warning, "Collision detection reported bad contact");
    else if (out.contacts.size() >= MAX_CONTACTS)
    {
        if (!out.pool || out.pool->FirstOverflow())
            Log(logging::Warning,
                "Too many contacts: only the first " + util::ToString(MAX_CONTACTS) + " of a step take part");
    }
    else if (out.pool)
        out.contacts.append(out.pool->Make(geomA, geomB, subId, point, normal, depth));
    else
        out.contacts.append(new Contact(&geomA, &geomB, subId, point, normal, depth));
}

bool RoughIntersectTest(const Polygon& a, const Polygon& b)
{
    const BoundingCircle ca = a.GetBCWorld();
    const BoundingCircle cb = b.GetBCWorld();
    return math::Intersects(ca, cb) && math::Intersects(a.GetWorldOBB(), b.GetWorldOBB()) &&
           !(a.DistanceWorld(cb.center) > cb.radius) && !(b.DistanceWorld(ca.center) > ca.radius);
}

bool AABBvcBC(const BoundingBox2& box, const BoundingCircle& circle)
{
    const math::Vec2 c = box.GetCenter();
    const math::Vec2 h = box.GetSize() * 0.5f;
    const float dx = std::fabs(c.x - circle.center.x) - h.x;
    const float dy = std::fabs(c.y - circle.center.y) - h.y;
    if (dx > circle.radius || dy > circle.radius)
        return false;
    if (dx > 0.0f && dy > 0.0f)
        return circle.radius * circle.radius > dx * dx + dy * dy;
    return true;
}

namespace
{
template <class T>
void CollideParticleAt(float distance, Particle& particle, const math::Vec2& p, T& shape, ContactSink& out)
{
    const float d = shape.DistanceWorld(p);
    if (d < distance)
        AddContact(out, shape, *particle.GetGeom(), 0, p, shape.NormalWorld(p), distance - d);
}
} // namespace

template <class T> void CollideParticle(float distance, Particle& particle, T& shape, ContactSink& out)
{
    CollideParticleAt(distance, particle, particle.GetPosition(), shape, out);
}

template <class T> void Collider::CollideWaterWith(T& shape, ContactSink& out)
{
    const size_t n = m_particles.size();
    for (size_t k = 0; k < n; ++k)
        CollideParticleAt(m_waterContactDistance, *m_particles[k], m_positions[k], shape, out);
}

template void CollideParticle<Plane>(float, Particle&, Plane&, ContactSink&);
template void CollideParticle<Circle>(float, Particle&, Circle&, ContactSink&);
template void CollideParticle<Polygon>(float, Particle&, Polygon&, ContactSink&);
template void CollideParticle<Box>(float, Particle&, Box&, ContactSink&);

void PlaneCircle(Plane& plane, Circle& circle, ContactSink& out)
{
    if (!ShouldCollide(plane, circle))
        return;
    const math::Vec2& n = plane.GetPlane().normal;
    const float d = plane.DistanceWorld(circle.GetPosition());
    const float r = circle.GetRadius();
    if (r > d)
        AddContact(out, plane, circle, 0, circle.GetPosition() - n * r, n, r - d);
}

void PlanePoly(Plane& plane, Polygon& polygon, ContactSink& out)
{
    if (ShouldCollide(plane, polygon))
        CollidePlanePoly(plane, polygon, out);
}

void PlaneBox(Plane& plane, Box& box, ContactSink& out)
{
    if (ShouldCollide(plane, box))
        CollidePlaneBox(plane, box, out);
}

void CollidePlaneBox(Plane& plane, Box& box, ContactSink& out)
{
    const math::Vec2& n = plane.GetPlane().normal;
    const math::OBB2D& obb = box.GetWorldOBB();
    if (plane.DistanceWorld(obb.center) > obb.ProjectedRadius(n))
        return;
    math::Vec2 corners[4];
    obb.CalcCorners(corners);
    for (std::uint32_t i = 0; i < 4; ++i)
    {
        const float d = plane.DistanceWorld(corners[i]);
        if (d < 0.0f)
            AddContact(out, plane, box, i, corners[i], n, -d);
    }
}

void CollidePlanePoly(Plane& plane, Polygon& polygon, ContactSink& out)
{
    const math::Vec2& n = plane.GetPlane().normal;
    const BoundingCircle bc = polygon.GetBCWorld();
    if (plane.DistanceWorld(bc.center) > bc.radius)
        return;
    const math::OBB2D& obb = polygon.GetWorldOBB();
    if (plane.DistanceWorld(obb.center) > obb.ProjectedRadius(n))
        return;
    const std::vector<math::Vec2>& vertices = polygon.GetWorldVertices();
    for (std::uint32_t i = 0; i < vertices.size(); ++i)
    {
        const float d = plane.DistanceWorld(vertices[i]);
        if (d < 0.0f)
            AddContact(out, plane, polygon, i, vertices[i], n, -d);
    }
}

void PolygonPolygon(Polygon& a, Polygon& b, ContactSink& out)
{
    if (ShouldCollide(a, b) && RoughIntersectTest(a, b))
        CollidePolyPoly(a, b, out);
}

void CollidePolyPoly(Polygon& a, Polygon& b, ContactSink& out)
{
    // Polygons touch through their vertices only; each vertex is one lookup in the other's field.
    std::uint32_t k = 0;
    for (const math::Vec2& v : a.GetWorldVertices())
    {
        ++k;
        const float d = b.DistanceWorld(v);
        if (d < 0.0f)
            AddContact(out, b, a, k, v, b.NormalWorld(v), -d);
    }
    for (const math::Vec2& v : b.GetWorldVertices())
    {
        ++k;
        const float d = a.DistanceWorld(v);
        if (d < 0.0f)
            AddContact(out, a, b, k, v, a.NormalWorld(v), -d);
    }
}

void CircleCircle(Circle& a, Circle& b, ContactSink& out)
{
    if (!ShouldCollide(a, b))
        return;
    const float s = a.GetRadius() + b.GetRadius();
    const math::Vec2 d = b.GetPosition() - a.GetPosition();
    const float distSq = math::Dot(d, d);
    if (!(s * s > distSq))
        return;
    const float depth = s - std::sqrt(distSq);
    math::Vec2 n = d;
    n.Normalize();
    AddContact(out, a, b, 0, a.GetPosition() + n * (a.GetRadius() - depth / 2.0f), n, depth);
}

void CirclePolygon(Circle& circle, Polygon& polygon, ContactSink& out)
{
    if (ShouldCollide(circle, polygon))
        CollideCirclePolygon(circle, polygon, out);
}

void CollideCirclePolygon(Circle& circle, Polygon& polygon, ContactSink& out)
{
    const math::Vec2& c = circle.GetPosition();
    const float r = circle.GetRadius();
    const float d = polygon.DistanceWorld(c);
    if (d > r)
        return;
    if (d < 0.0f)
    {
        AddContact(out, circle, polygon, SUB_CENTRE_INSIDE, c, -polygon.NormalWorld(c), r - d);
        return;
    }
    // One contact per nearby edge and per nearby vertex, so that a circle rolls over concave places.
    const float rSq = r * r;
    std::uint32_t k = 0;
    for (const Linesegment& line : polygon.GetWorldLines())
    {
        ++k;
        const math::Vec2 q = line.ClosestPoint(c);
        const math::Vec2 delta = q - c;
        const float distSq = math::Dot(delta, delta);
        if (!(q == line.a) && !(q == line.b) && distSq < rSq)
        {
            const float dist = std::sqrt(distSq);
            AddContact(out, circle, polygon, k, q, delta / dist, r - dist);
        }
    }
    for (const math::Vec2& v : polygon.GetWorldVertices())
    {
        ++k;
        const math::Vec2 delta = v - c;
        const float distSq = math::Dot(delta, delta);
        if (distSq < rSq)
        {
            const float dist = std::sqrt(distSq);
            AddContact(out, circle, polygon, k, v, delta / dist, r - dist);
        }
    }
}

void BoxBox(Box& a, Box& b, ContactSink& out)
{
    if (!ShouldCollide(a, b))
        return;
    const math::OBB2D* boxes[2] = {&a.GetWorldOBB(), &b.GetWorldOBB()};
    // Disjoint bounding circles mean a separating axis exists: the exact test would find nothing.
    {
        const math::Vec2 ea(boxes[0]->halfExtent[0], boxes[0]->halfExtent[1]);
        const math::Vec2 eb(boxes[1]->halfExtent[0], boxes[1]->halfExtent[1]);
        const float r = ea.Length() + eb.Length();
        if (math::DistanceSq(boxes[0]->center, boxes[1]->center) > r * r)
            return;
    }

    // Separating axes: the two axes of each box.
    float bestSep[2];
    math::Vec2 bestNormal[2] = {boxes[0]->axis[0], boxes[1]->axis[0]};
    int bestAxis[2] = {0, 0};
    for (int i = 0; i < 2; ++i)
    {
        const math::OBB2D& own = *boxes[i];
        const math::OBB2D& other = *boxes[1 - i];
        const math::Vec2 d = other.center - own.center;
        bestSep[i] = -math::INF;
        for (int j = 0; j < 2; ++j)
        {
            const math::Vec2& axis = own.axis[j];
            const float proj = math::Dot(d, axis);
            const float sign = proj < 0.0f ? -1.0f : 1.0f;
            const float sep = std::fabs(proj) - own.ProjectedRadius(axis) - other.ProjectedRadius(axis);
            // A NaN separation (a box with a non-finite pose) counts as separated: no contact can be made.
            if (!(sep <= 0.0f))
                return;
            if (sep >= bestSep[i])
            {
                bestSep[i] = sep;
                bestNormal[i] = axis * sign;
                bestAxis[i] = j;
            }
        }
    }
    const int ref = bestSep[1] >= bestSep[0] ? 1 : 0;
    const math::OBB2D& reference = *boxes[ref];
    const math::OBB2D& incident = *boxes[1 - ref];
    Box& refBox = ref == 0 ? a : b;
    Box& incBox = ref == 0 ? b : a;
    const math::Vec2 n = bestNormal[ref];

    // The incident face is the one most opposed to the normal; p_a is its deepest corner.
    float dots[2];
    float signs[2];
    int f = 0;
    float bestDot = -math::INF;
    for (int k = 0; k < 2; ++k)
    {
        dots[k] = incident.halfExtent[k] * math::Dot(incident.axis[k], n);
        signs[k] = -dots[k] < 0.0f ? -1.0f : 1.0f;
        if (std::fabs(dots[k]) > bestDot)
        {
            bestDot = std::fabs(dots[k]);
            f = k;
        }
    }
    const int g = 1 - f;
    const math::Vec2 faceCentre = incident.center + incident.axis[f] * (signs[f] * incident.halfExtent[f]);
    const math::Vec2 side = incident.axis[g] * (signs[g] * incident.halfExtent[g]);
    math::Vec2 pa = faceCentre + side;
    math::Vec2 pb = faceCentre - side;

    const float e = reference.halfExtent[bestAxis[ref]];
    float da = math::Dot(pa - reference.center, n) - e;
    float db = math::Dot(pb - reference.center, n) - e;
    if (db > 0.0f)
    {
        AddContact(out, refBox, incBox, 0, pa, n, -da);
        return;
    }

    // Clip the incident edge to the side faces of the reference box.
    math::Vec2 t = reference.axis[1 - bestAxis[ref]];
    if (math::Dot(pb - pa, t) < 0.0f)
        t = -t;
    const float w = reference.halfExtent[1 - bestAxis[ref]];
    const math::Vec2 pa0 = pa;
    const math::Vec2 pb0 = pb;
    const float da0 = da;
    const float db0 = db;
    const float ta = math::Dot(pa0 - reference.center, t);
    const float tb = math::Dot(pb0 - reference.center, t);
    if (tb > w)
    {
        const float u = (w - ta) / (tb - ta);
        pb = pa0 + (pb0 - pa0) * u;
        db = da0 + (db0 - da0) * u;
    }
    if (ta < -w)
    {
        const float u = (-w - ta) / (tb - ta);
        pa = pa0 + (pb0 - pa0) * u;
        da = da0 + (db0 - da0) * u;
    }
    // Sub ids follow the points' left-to-right order, which stays put while the boxes rest.
    const std::uint32_t subA = pb.x <= pa.x ? 1 : 0;
    AddContact(out, refBox, incBox, subA, pa, n, -da);
    AddContact(out, refBox, incBox, 1 - subA, pb, n, -db);
}

void BoxPolygon(Box& box, Polygon& polygon, ContactSink& out)
{
    if (!ShouldCollide(box, polygon) || !math::Intersects(box.GetWorldOBB(), polygon.GetWorldOBB()))
        return;
    std::uint32_t k = 0;
    for (const math::Vec2& v : polygon.GetWorldVertices())
    {
        ++k;
        const float d = box.DistanceWorld(v);
        if (d < 0.0f)
            AddContact(out, box, polygon, k, v, box.NormalWorld(v), -d);
    }
    math::Vec2 corners[4];
    box.GetWorldOBB().CalcCorners(corners);
    for (const math::Vec2& c : corners)
    {
        ++k;
        const float d = polygon.DistanceWorld(c);
        if (d < 0.0f)
            AddContact(out, polygon, box, k, c, polygon.NormalWorld(c), -d);
    }
}

void BoxCircle(Box& box, Circle& circle, ContactSink& out)
{
    if (!ShouldCollide(box, circle))
        return;
    const math::OBB2D& obb = box.GetWorldOBB();
    const math::Vec2& c = circle.GetPosition();
    const float r = circle.GetRadius();
    const math::Vec2 d = c - obb.center;
    float s[2];
    float q[2];
    int inside = 0;
    for (int i = 0; i < 2; ++i)
    {
        s[i] = math::Dot(d, obb.axis[i]);
        const float e = obb.halfExtent[i];
        if (std::fabs(s[i]) > r + e)
            return;
        q[i] = std::min(std::max(s[i], -e), e);
        if (std::fabs(s[i]) <= e)
            ++inside;
    }
    if (inside == 2)
    {
        // The centre is in the box: out through the nearest face.
        const int i = (obb.halfExtent[1] - std::fabs(s[1]) < obb.halfExtent[0] - std::fabs(s[0])) ? 1 : 0;
        const math::Vec2 n = s[i] > 0.0f ? obb.axis[i] : -obb.axis[i];
        AddContact(out, box, circle, 0, c - n * r, n, obb.halfExtent[i] - std::fabs(s[i]) + r);
        return;
    }
    const math::Vec2 delta = obb.axis[0] * (s[0] - q[0]) + obb.axis[1] * (s[1] - q[1]);
    const float distSq = math::Dot(delta, delta);
    if (!(r * r > distSq))
        return;
    const float dist = std::sqrt(distSq);
    const math::Vec2 point = obb.center + obb.axis[0] * q[0] + obb.axis[1] * q[1];
    AddContact(out, box, circle, 0, point, delta / dist, r - dist);
}

void Collider::AssignBodies(const std::vector<util::SharedPtr<Body>>& bodies,
                            const std::vector<util::SharedPtr<Particle>>& particles)
{
    m_planes.clear();
    m_polygons.clear();
    m_circles.clear();
    m_boxes.clear();
    m_particles.clear();
    m_waterContactDistance = WATER_CONTACT_FACTOR * SPH::GetInstancePtr()->m_radius;

    for (const util::SharedPtr<Body>& bodyPtr : bodies)
    {
        Body* body = bodyPtr.get();
        for (const Body::BodyPart& part : body->GetParts())
        {
            Geom* g = part.geom.get();
            QLEX_ASSERT(g->GetBody());
            switch (g->GetKind())
            {
            case Geom::Kind::Polygon:
                m_polygons.append(PolyHull{body, static_cast<Polygon*>(g)});
                break;
            case Geom::Kind::Circle:
            {
                Circle* circle = static_cast<Circle*>(g);
                m_circles.append(CircleHull{body, circle, circle->GetBCWorld()});
                break;
            }
            case Geom::Kind::Plane:
                m_planes.append(static_cast<Plane*>(g));
                break;
            case Geom::Kind::Box:
                m_boxes.append(static_cast<Box*>(g));
                break;
            default:
                break;
            }
        }
    }
    for (const util::SharedPtr<Particle>& p : particles)
        m_particles.append(p.get());
}

void Collider::Collide(util::VectorPOD<Contact*>& list)
{
    const util::ScopeProfiler profile("Collider::Collide");
    m_contactPool.Reclaim();
    ContactSink out{list, &m_contactPool};
    {
        const util::ScopeProfiler profile("Plane");
        for (Plane* plane : m_planes)
        {
            for (CircleHull& c : m_circles)
                PlaneCircle(*plane, *c.circle, out);
            for (PolyHull& p : m_polygons)
                PlanePoly(*plane, *p.polygon, out);
            for (Box* box : m_boxes)
                PlaneBox(*plane, *box, out);
        }
    }
    if (m_useBroadphase)
        CollideCandidatePairs(out);
    else
        CollideAllPairs(out);
    if (!m_particles.empty())
        CollideWater(out);
}

void Collider::CollideAllPairs(ContactSink& out)
{
    {
        const util::ScopeProfiler profile("Polygon-Polygon");
        const size_t n = m_polygons.size();
        for (size_t i = 0; i < n; ++i)
            for (size_t j = i + 1; j < n; ++j)
                PolygonPolygon(*m_polygons[i].polygon, *m_polygons[j].polygon, out);
    }
    {
        const util::ScopeProfiler profile("Circle-Circle");
        const size_t n = m_circles.size();
        for (size_t i = 0; i < n; ++i)
            for (size_t j = i + 1; j < n; ++j)
                CircleCircle(*m_circles[i].circle, *m_circles[j].circle, out);
    }
    {
        const util::ScopeProfiler profile("Circle-Polygon");
        for (CircleHull& c : m_circles)
            for (PolyHull& p : m_polygons)
                CirclePolygon(*c.circle, *p.polygon, out);
    }
    {
        const util::ScopeProfiler profile("Box-Box");
        const size_t n = m_boxes.size();
        for (size_t i = 0; i < n; ++i)
            for (size_t j = i + 1; j < n; ++j)
                BoxBox(*m_boxes[i], *m_boxes[j], out);
    }
    {
        const util::ScopeProfiler profile("Box-Polygon");
        for (Box* box : m_boxes)
            for (PolyHull& p : m_polygons)
                BoxPolygon(*box, *p.polygon, out);
    }
    {
        const util::ScopeProfiler profile("Box-Circle");
        for (Box* box : m_boxes)
            for (CircleHull& c : m_circles)
                BoxCircle(*box, *c.circle, out);
    }
}

template <class F> void Collider::RunStage(Broadphase::Stage stage, size_t& next, F collide)
{
    const size_t n = m_broadphase.GetPairCount();
    for (; next < n; ++next)
    {
        const Broadphase::Pair pair = m_broadphase.GetPair(next);
        if (pair.stage != stage)
            break;
        collide(pair.outer, pair.inner);
    }
}

void Collider::CollideCandidatePairs(ContactSink& out)
{
    {
        const util::ScopeProfiler profile("Broadphase");
        m_broadphase.Clear();
        for (const PolyHull& p : m_polygons)
            m_broadphase.AddPolygon(*p.polygon);
        for (const CircleHull& c : m_circles)
            m_broadphase.AddCircle(*c.circle);
        for (const Box* box : m_boxes)
            m_broadphase.AddBox(*box);
        m_broadphase.FindPairs();
    }
    // The same pair functions as CollideAllPairs, on the candidates in the same order.
    size_t next = 0;
    {
        const util::ScopeProfiler profile("Polygon-Polygon");
        RunStage(Broadphase::POLYGON_POLYGON, next,
                 [&](std::uint32_t i, std::uint32_t j)
                 { PolygonPolygon(*m_polygons[i].polygon, *m_polygons[j].polygon, out); });
    }
    {
        const util::ScopeProfiler profile("Circle-Circle");
        RunStage(Broadphase::CIRCLE_CIRCLE, next,
                 [&](std::uint32_t i, std::uint32_t j)
                 { CircleCircle(*m_circles[i].circle, *m_circles[j].circle, out); });
    }
    {
        const util::ScopeProfiler profile("Circle-Polygon");
        RunStage(Broadphase::CIRCLE_POLYGON, next,
                 [&](std::uint32_t c, std::uint32_t p)
                 { CirclePolygon(*m_circles[c].circle, *m_polygons[p].polygon, out); });
    }
    {
        const util::ScopeProfiler profile("Box-Box");
        RunStage(Broadphase::BOX_BOX, next,
                 [&](std::uint32_t i, std::uint32_t j) { BoxBox(*m_boxes[i], *m_boxes[j], out); });
    }
    {
        const util::ScopeProfiler profile("Box-Polygon");
        RunStage(Broadphase::BOX_POLYGON, next,
                 [&](std::uint32_t b, std::uint32_t p)
                 { BoxPolygon(*m_boxes[b], *m_polygons[p].polygon, out); });
    }
    {
        const util::ScopeProfiler profile("Box-Circle");
        RunStage(Broadphase::BOX_CIRCLE, next,
                 [&](std::uint32_t b, std::uint32_t c)
                 { BoxCircle(*m_boxes[b], *m_circles[c].circle, out); });
    }
}

void Collider::CollideWater(ContactSink& out)
{
    const util::ScopeProfiler profile("Water");
    BoundingBox2 waterBox = BoundingBox2::Empty();
    math::OBB2D waterOBB;
    {
        const util::ScopeProfiler profile("Creating BB");
        // The positions are copied once, compact, for the passes over all water below.
        m_positions.resize(m_particles.size());
        for (size_t k = 0; k < m_particles.size(); ++k)
        {
            const math::Vec2& p = m_particles[k]->GetPosition();
            m_positions[k] = p;
            waterBox.Include(p);
        }
        const math::Vec2 grow(m_waterContactDistance, m_waterContactDistance);
        waterBox = BoundingBox2(waterBox.min - grow, waterBox.max + grow);
        const math::Vec2 half = waterBox.GetSize() * 0.5f;
        waterOBB = math::OBB2D::FromCenterRad(waterBox.GetCenter(), 0.0f);
        waterOBB.halfExtent[0] = half.x;
        waterOBB.halfExtent[1] = half.y;
    }
    {
        const util::ScopeProfiler profile("Plane-Water");
        for (Plane* plane : m_planes)
        {
            if (plane->DistanceWorld(waterOBB.center) > waterOBB.ProjectedRadius(plane->GetPlane().normal) ||
                !plane->GetWaterCollide())
                continue;
            CollideWaterWith(*plane, out);
        }
    }
    {
        const util::ScopeProfiler profile("Circle-Water");
        for (CircleHull& c : m_circles)
        {
            if (!AABBvcBC(waterBox, c.bounds) || !c.circle->GetWaterCollide())
                continue;
            CollideWaterWith(*c.circle, out);
        }
    }
    {
        const util::ScopeProfiler profile("Poly-Water");
        for (PolyHull& poly : m_polygons)
        {
            Polygon& shape = *poly.polygon;
            if (!AABBvcBC(waterBox, shape.GetBCWorld()) || !math::Intersects(waterOBB, shape.GetWorldOBB()) ||
                !shape.GetWaterCollide())
                continue;
            CollideWaterWith(shape, out);
        }
    }
    {
        const util::ScopeProfiler profile("Box-Water");
        for (Box* box : m_boxes)
        {
            if (!AABBvcBC(waterBox, box->GetBCWorld()) || !math::Intersects(waterOBB, box->GetWorldOBB()) ||
                !box->GetWaterCollide())
                continue;
            CollideWaterWith(*box, out);
        }
    }
}

} // namespace physics
