#pragma once

#include "physics/Broadphase.h"
#include "physics/ContactPool.h"
#include "physics/Geom.h"
#include "util/SharedPtr.h"
#include "util/VectorPOD.h"

#include <cstdint>
#include <vector>

namespace physics
{
class AbstractBody;
class Body;
class Box;
class Circle;
class Contact;
class Particle;
class Plane;
class Polygon;

// Where the pair functions put what they find: the list, and the pool that the contacts come from (none:
// they are made with new, and the caller owns them).
struct ContactSink
{
    util::VectorPOD<Contact*>& contacts;
    ContactPool* pool;
};

struct PolyHull
{
    Body* body;
    Polygon* polygon;
};

struct CircleHull
{
    Body* body;
    Circle* circle;
    BoundingCircle bounds;
};

// Turns the present poses into raw contacts, once a step. Shapes are sorted by kind into flat lists, and
// the pairs of each two lists are tried in the order of nested loops: the filter first, then a quick
// bounding test, then exact work. With the broadphase only the pairs whose boxes meet are tried, in the
// same order, so the contacts are the same, contact for contact. Water takes its own path, in which whole
// shapes are tested against the box around all particles before any particle is looked at.
class Collider
{
public:
    void AssignBodies(const std::vector<util::SharedPtr<Body>>& bodies,
                      const std::vector<util::SharedPtr<Particle>>& particles);
    // Appends contacts from the collider's pool; the caller takes references to those it keeps, and a
    // contact is reused in a later call once the pool is its only holder.
    void Collide(util::VectorPOD<Contact*>& out);
    void SetBroadphase(bool on) { m_useBroadphase = on; }

private:
    void CollideAllPairs(ContactSink& out);
    void CollideCandidatePairs(ContactSink& out);
    // Runs `collide` on the candidates of the stage, from `next` on, and leaves `next` after them.
    template <class F> void RunStage(Broadphase::Stage stage, size_t& next, F collide);
    void CollideWater(ContactSink& out);
    // CollideParticle for every particle, from the copied positions.
    template <class T> void CollideWaterWith(T& shape, ContactSink& out);

    util::VectorPOD<Plane*> m_planes;
    util::VectorPOD<PolyHull> m_polygons;
    util::VectorPOD<CircleHull> m_circles;
    util::VectorPOD<Box*> m_boxes;
    util::VectorPOD<Particle*> m_particles;
    util::VectorPOD<math::Vec2> m_positions;
    ContactPool m_contactPool;
    Broadphase m_broadphase;
    bool m_useBroadphase = true;
    // A particle meets shapes as a small circle of this radius; pressure among particles gives the rest of
    // the water's volume.
    float m_waterContactDistance = 0.0f;
};

bool ShouldCollide(const AbstractBody* bodyA, const Geom& geomA, const AbstractBody* bodyB,
                   const Geom& geomB);
bool ShouldCollide(const Geom& geomA, const Geom& geomB);

// Drops (and logs) a contact with a non-finite value.
void AddContact(ContactSink& out, Geom& geomA, Geom& geomB, std::uint32_t subId, const math::Vec2& point,
                const math::Vec2& normal, float depth);

bool RoughIntersectTest(const Polygon& a, const Polygon& b);
bool AABBvcBC(const BoundingBox2& box, const BoundingCircle& circle);

template <class T> void CollideParticle(float distance, Particle& particle, T& shape, ContactSink& out);

// Pair functions. Those named Collide... hold the work without the filter; the others test ShouldCollide
// first.
void PlaneCircle(Plane& plane, Circle& circle, ContactSink& out);
void PlanePoly(Plane& plane, Polygon& polygon, ContactSink& out);
void PlaneBox(Plane& plane, Box& box, ContactSink& out);
void CollidePlaneBox(Plane& plane, Box& box, ContactSink& out);
void CollidePlanePoly(Plane& plane, Polygon& polygon, ContactSink& out);
void PolygonPolygon(Polygon& a, Polygon& b, ContactSink& out);
void CollidePolyPoly(Polygon& a, Polygon& b, ContactSink& out);
void CircleCircle(Circle& a, Circle& b, ContactSink& out);
void CirclePolygon(Circle& circle, Polygon& polygon, ContactSink& out);
void CollideCirclePolygon(Circle& circle, Polygon& polygon, ContactSink& out);
void BoxBox(Box& a, Box& b, ContactSink& out);
void BoxPolygon(Box& box, Polygon& polygon, ContactSink& out);
void BoxCircle(Box& box, Circle& circle, ContactSink& out);

} // namespace physics
