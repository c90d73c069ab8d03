#include "physics/Constraint.h"

#include "physics/AbstractBody.h"

namespace physics
{
ConstraintParams::ConstraintParams(float h_, float d, float k, float accFactor) : h(h_)
{
    const float q = 4.0f * d + 1.0f;
    distanceFactor = 4.0f / (h * q);
    velocityFactor = 4.0f * d / q;
    accelerationFactor = accFactor;
    regularization = 4.0f / (q * h * h * k);
}

Constraint::Constraint() : m_r0(0.0f, 0.0f), m_r1(0.0f, 0.0f) {}

Constraint::Constraint(const Constraint& other)
    : util::Pointee(), m_distanceWeight(other.m_distanceWeight), m_warmStartWeight(other.m_warmStartWeight),
      m_r0(other.m_r0), m_r1(other.m_r1), m_priority(other.m_priority)
{
    m_bodies[0] = other.m_bodies[0];
    m_bodies[1] = other.m_bodies[1];
}

Constraint& Constraint::operator=(const Constraint& other)
{
    m_distanceWeight = other.m_distanceWeight;
    m_warmStartWeight = other.m_warmStartWeight;
    m_bodies[0] = other.m_bodies[0];
    m_bodies[1] = other.m_bodies[1];
    m_r0 = other.m_r0;
    m_r1 = other.m_r1;
    m_priority = other.m_priority;
    return *this;
}

Constraint::~Constraint() = default;

float CombinedMass(const AbstractBody& bodyA, const math::Vec2& rA, const AbstractBody& bodyB,
                   const math::Vec2& rB, const math::Vec2& dir)
{
    const float ca = math::Cross(rA, dir);
    const float cb = math::Cross(rB, dir);
    return 1.0f / (bodyA.GetEffectiveMassInv() + bodyB.GetEffectiveMassInv() +
                   bodyA.GetEffectiveInertiaInv() * ca * ca + bodyB.GetEffectiveInertiaInv() * cb * cb);
}

} // namespace physics
