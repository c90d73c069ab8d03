#include "physics/Geom.h"

#include "logging/Exception.h"
#include "physics/Body.h"
#include "physics/Simulation.h"

#include <cmath>

namespace physics
{
std::uint32_t Geom::s_idCounter = 0;

namespace
{
// The world geometry must draw id 0, so the simulation (which makes it first of all geometries) comes up
// before any other shape takes an id.
const Simulation& SimulationFirst()
{
    return *Simulation::GetInstancePtr();
}
} // namespace

Geom::Geom(Kind kind)
    : m_id((SimulationFirst(), s_idCounter++)), m_position(0.0f, 0.0f),
      m_density(SimulationFirst().m_defaultBodyDensity), m_friction(SimulationFirst().m_defaultBodyFriction),
      m_restitution(SimulationFirst().m_defaultBodyRestitution), m_noCollide(3), m_kind(kind)
{
}

Geom::Geom(const Geom& other) : Geom(other.m_kind) {}

Geom::~Geom() = default;

Body* Geom::GetBodyBody() const
{
    return m_kind == Kind::ParticleCircle ? nullptr : static_cast<Body*>(m_body);
}

void Geom::SetWorldPose(const math::Mat2D& m)
{
    m_pose = m;
    m_worldToGeom = math::Inverted(m);
    m_position = math::Vec2(m.tx, m.ty);
}

float Geom::GetAngle() const
{
    return std::atan2(m_pose.s, m_pose.c);
}

void Geom::SetPos(const math::Vec2& p)
{
    math::Mat2D m = m_pose;
    m.tx = p.x;
    m.ty = p.y;
    SetWorldPose(m);
}

void Geom::SetDensity(float density)
{
    m_density = density;
    OnGeomChange();
}

void Geom::AddNoCollide(Geom* other)
{
    int& count = m_noCollide[other];
    if (count == 0)
        ++m_noCollideEntries;
    ++count;
}

void Geom::RemoveNoCollide(Geom* other)
{
    int* count = m_noCollide.TryGet(other);
    QLEX_ASSERT(count && *count > 0);
    if (--*count == 0)
    {
        m_noCollide.erase(other);
        --m_noCollideEntries;
    }
}

bool Geom::HasNoCollide(Geom* other) const
{
    return m_noCollideEntries > 0 && m_noCollide.TryGet(other) != nullptr;
}

void Geom::OnGeomChange()
{
    if (Body* body = GetBodyBody())
        body->OnGeomChange();
}

void Geom::CopyFrom(const Geom& other)
{
    // Through the virtual setter, so that shapes keep their world bounds in step with the pose.
    SetWorldPose(other.m_pose);
    m_density = other.m_density;
    m_friction = other.m_friction;
    m_restitution = other.m_restitution;
    m_collideWater = other.m_collideWater;
    m_heteroCollide = other.m_heteroCollide;
    m_collideSet = other.m_collideSet;
    OnGeomChange();
}

} // namespace physics
