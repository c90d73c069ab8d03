#include "app/entities/GeomEntity.h"

#include "app/EntitySerializer.h"
#include "physics/Simulation.h"

#include <cmath>

namespace app
{
namespace
{
// The setting on the left follows the attribute at once.
template <class T, class Setter>
void Forward(script::AttribWrapper<T>& attribute, physics::Geom* geom, Entity* owner, Setter setter)
{
    script::TAttrib<T>* attrib = &*attribute.GetAttrib();
    attribute->AddChangeCallback(
        QLEX_NEW new util::Callback([attrib, geom, setter] { (geom->*setter)(attrib->Get()); }, owner));
}
} // namespace

GeomEntity::GeomEntity(GeomPtr geom)
    : m_geom(geom), m_friction(this, "friction", geom->GetFriction()),
      m_restitution(this, "restitution", geom->GetRestitution()), m_collideWater(this, "collideWater", true),
      m_heteroCollide(this, "heteroCollide", false),
      m_collideSet(this, "collideSet",
                   geom->GetKind() == physics::Geom::Kind::Plane ? COLLIDE_ALL : COLLIDE_DEFAULT_GROUP)
{
    physics::Geom* g = m_geom.get();
    m_friction->RequireFinite();
    m_restitution->RequireFinite();
    Forward(m_friction, g, this, &physics::Geom::SetFriction);
    Forward(m_restitution, g, this, &physics::Geom::SetRestitution);
    Forward(m_collideWater, g, this, &physics::Geom::SetWaterCollide);
    Forward(m_heteroCollide, g, this, &physics::Geom::SetHeteroCollide);
    Forward(m_collideSet, g, this, &physics::Geom::SetCollideSet);
    g->SetWaterCollide(m_collideWater);
    g->SetHeteroCollide(m_heteroCollide);
    g->SetCollideSet(m_collideSet);
}

GeomEntity::~GeomEntity() = default;

util::SharedPtr<physics::Body> GeomEntity::GetBody() const
{
    m_body = m_geom ? m_geom->GetBodyBody() : nullptr;
    return m_body;
}

void GeomEntity::Update(float)
{
    GetBody();
}

bool GeomEntity::IsOnEntity(math::Vec2 worldPoint) const
{
    return m_geom->DistanceWorld(worldPoint) <= 0.0f;
}

bool GeomEntity::IsAlive() const
{
    if (!m_geom)
        return false;
    const util::SharedPtr<physics::Body> body = GetBody();
    if (!body || !physics::Simulation::GetInstancePtr()->HasBody(body))
        return false;
    return Entity::IsAlive();
}

void GeomEntity::AddToSimulation()
{
    GetBody();
    if (!m_body)
    {
        m_body = QLEX_NEW new physics::Body();
        m_body->SetGeom(m_geom);
    }
    // A body held by an unfinished transform would never move again.
    m_body->SetHeld(false);
    physics::Simulation::GetInstancePtr()->AddBody(m_body);
}

void GeomEntity::RemoveFromSimulation()
{
    GetBody();
    if (!m_body)
        return;
    physics::Body::GeomSet geoms = m_body->GetGeoms();
    QLEX_ASSERT(geoms.Contains(m_geom));
    geoms.erase(m_geom);
    const util::SharedPtr<physics::Body> body = m_body;
    body->SetGeoms(geoms);
    if (geoms.size() == 0)
        physics::Simulation::GetInstancePtr()->RemoveBody(body);
    m_body = nullptr;
}

void GeomEntity::Transform(const math::TMat2D<float>& m)
{
    const util::SharedPtr<physics::Body> body = GetBody();
    if (!body)
        return;
    m_geom->SetWorldPose(m * m_geom->GetPose());
    body->OnGeomChange();
}

math::BoundingBox2 GeomEntity::GetAABB() const
{
    return m_geom->GetAABBWorld();
}

void GeomEntity::CopyFrom(const Entity* source)
{
    Entity::CopyFrom(source);
    if (const GeomEntity* geom = dynamic_cast<const GeomEntity*>(source))
    {
        m_friction = geom->m_friction.Get();
        m_restitution = geom->m_restitution.Get();
        m_collideWater = geom->m_collideWater.Get();
        m_heteroCollide = geom->m_heteroCollide.Get();
        m_collideSet = geom->m_collideSet.Get();
    }
}

bool GeomEntity::SharesBody() const
{
    const util::SharedPtr<physics::Body> body = GetBody();
    return body && body->GetGeoms().size() > 1;
}

void GeomEntity::SerializeTo(EntitySerializer& serializer) const
{
    Entity::SerializeTo(serializer);
    const math::Mat2D& pose = m_geom->GetPose();
    serializer.Set("geomID", static_cast<unsigned long>(m_geom->GetId()));
    serializer.Set("pos", pose.GetTranslation());
    serializer.Set("angle", std::atan2(pose.s, pose.c));
    if (SharesBody())
        serializer.Set("body", static_cast<unsigned long>(m_body->GetId()));
}

void GeomEntity::Deserialize(const EntitySerializer& serializer)
{
    if (serializer.Has("pos") || serializer.Has("angle"))
    {
        const math::Vec2 pos = serializer.Has("pos") ? serializer.Get<math::Vec2>("pos") : math::Vec2(0, 0);
        const float angle = serializer.Has("angle") ? serializer.Get<float>("angle") : 0.0f;
        m_geom->SetWorldPose(math::Mat2D::TranslationRotation(pos, angle));
        m_geom->OnGeomChange();
    }
    Entity::Deserialize(serializer);
}

} // namespace app
