#include "physics/SpringJoint.h"

#include "logging/Exception.h"
#include "physics/Body.h"
#include "physics/Constraint.h"
#include "physics/Simulation.h"

#include <cmath>

namespace physics
{
namespace
{
// Stands in for the length of a spring whose ends coincide, so that it still has a direction.
const float ZERO_LENGTH = 1e-6f;
} // namespace

math::Vec2 SpringDamper::CalculateForces(const math::Vec2& p0, const math::Vec2& p1, const math::Vec2& v0,
                                         const math::Vec2& v1) const
{
    const math::Vec2 d = p1 - p0;
    float len = d.Length();
    math::Vec2 dir;
    if (len == 0.0f)
    {
        dir = math::Vec2(1.0f, 0.0f);
        len = ZERO_LENGTH;
    }
    else
    {
        dir = d / len;
    }
    const float f = (len - restLength) * k + math::Dot(v1 - v0, dir) * c;
    return dir * f;
}

SpringJoint::SpringJoint(const util::SharedPtr<Geom>& geomA, const math::Vec2& worldPointA,
                         const util::SharedPtr<Geom>& geomB, const math::Vec2& worldPointB)
    : Joint(geomA, geomB), m_targetLength(math::Distance(worldPointA, worldPointB))
{
    m_anchors[0] = math::TransformCoordinate(geomA->GetWorldToGeom(), worldPointA);
    m_anchors[1] = math::TransformCoordinate(geomB->GetWorldToGeom(), worldPointB);
}

void SpringJoint::SetStrengthFactor(float factor)
{
    QLEX_ASSERT(math::IsFiniteFloat(factor));
    m_strengthFactor = factor;
}

void SpringJoint::SetDampingFactor(float factor)
{
    QLEX_ASSERT(math::IsFiniteFloat(factor));
    m_dampingFactor = factor;
}

void SpringJoint::GetWorldPoints(math::Vec2 out[2]) const
{
    for (int i = 0; i < 2; ++i)
        out[i] = math::TransformCoordinate(m_geoms[i]->GetPose(), m_anchors[i]);
}

float SpringJoint::CalcMass(const Body& body0, const Body& body1, const math::Vec2 points[2],
                            float& length) const
{
    math::Vec2 dir = points[1] - points[0];
    length = dir.Length();
    dir.Normalize();
    // The anchors, in their shapes' frames, serve as the arms.
    return CombinedMass(body0, m_anchors[0], body1, m_anchors[1], dir);
}

void SpringJoint::ApplyForce()
{
    Body* bodies[2];
    GetBodies(bodies);
    if (!bodies[0] || !bodies[1])
        return;
    math::Vec2 p[2];
    GetWorldPoints(p);
    float length;
    const float mass = CalcMass(*bodies[0], *bodies[1], p, length);
    const float k = Simulation::GetInstancePtr()->m_springForce * mass * m_strengthFactor;
    // Critical damping of a mass on a spring is 2 sqrt(m k); the factor scales it.
    const float c = 2.0f * std::sqrt(mass * k) * m_dampingFactor;
    const SpringDamper spring{k, c, m_targetLength};
    const math::Vec2 f =
        spring.CalculateForces(p[0], p[1], bodies[0]->GetVelAtWorld(p[0]), bodies[1]->GetVelAtWorld(p[1]));
    bodies[0]->ApplyForce(f, p[0]);
    bodies[1]->ApplyForce(-f, p[1]);
}

float SpringJoint::CalcEnergy() const
{
    Body* bodies[2];
    GetBodies(bodies);
    if (!bodies[0] || !bodies[1])
        return 0.0f;
    math::Vec2 p[2];
    GetWorldPoints(p);
    float length;
    const float mass = CalcMass(*bodies[0], *bodies[1], p, length);
    const float k = Simulation::GetInstancePtr()->m_springForce * mass * m_strengthFactor;
    const float stretch = length - m_targetLength;
    return 0.5f * k * stretch * stretch;
}

} // namespace physics
