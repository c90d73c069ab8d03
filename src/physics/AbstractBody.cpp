#include "physics/AbstractBody.h"

#include "physics/Simulation.h"

#include <cmath>

namespace physics
{
std::uint32_t AbstractBody::s_idCounter = 0;

namespace
{
// The world body must draw id 0, so the simulation (which makes it first of all bodies) comes up before
// any other body takes an id.
std::uint32_t DrawBodyId(std::uint32_t& counter)
{
    Simulation::GetInstancePtr();
    return counter++;
}
} // namespace

AbstractBody::AbstractBody()
    : m_id(DrawBodyId(s_idCounter)), m_position(0.0f, 0.0f), m_velocity(0.0f, 0.0f), m_force(0.0f, 0.0f),
      m_velocityChange(0.0f, 0.0f), m_mass(math::INF), m_inertia(math::INF)
{
}

AbstractBody::AbstractBody(const AbstractBody& other)
    : util::Pointee(), m_id(DrawBodyId(s_idCounter)), m_position(other.m_position),
      m_velocity(other.m_velocity), m_force(other.m_force), m_velocityChange(0.0f, 0.0f),
      m_angle(other.m_angle), m_angularVelocity(other.m_angularVelocity), m_torque(other.m_torque),
      m_mass(math::INF), m_inertia(math::INF)
{
}

AbstractBody::~AbstractBody() = default;

bool AbstractBody::IsBad() const
{
    return !math::IsFinite(m_position) || !math::IsFinite(m_velocity) || !math::IsFiniteFloat(m_angle) ||
           !math::IsFiniteFloat(m_angularVelocity);
}

math::Vec2 AbstractBody::GetVelAtWorld(const math::Vec2& p) const
{
    return m_velocity + math::Cross(m_angularVelocity, p - m_position);
}

void AbstractBody::AddForce(const math::Vec2& f)
{
    if (!IsImmovable())
        m_force += f;
}

void AbstractBody::ApplyForce(const math::Vec2& f, const math::Vec2& p)
{
    if (IsImmovable())
        return;
    m_force += f;
    m_torque += math::Cross(p - m_position, f);
}

void AbstractBody::IntegrateVelocity(float dt)
{
    if (IsImmovable())
        return;
    m_velocity += m_force * (dt * m_massInv);
    m_angularVelocity += dt * m_torque * m_inertiaInv;
}

void AbstractBody::IntegratePosition(float dt)
{
    if (IsImmovable())
        return;
    Move(dt);
    ApplyPoseChange();
}

} // namespace physics
