#include "app/entities/JointEntity.h"

#include "app/AppSettings.h"
#include "app/EntitySerializer.h"
#include "app/Scene.h"
#include "logging/Log.h"
#include "physics/Hinge.h"
#include "physics/Polygon.h"
#include "physics/Simulation.h"
#include "physics/SpringJoint.h"
#include "util/StringUtil.h"

namespace app
{
namespace
{
// A kept end must still lie on its geom to within this distance, in metres.
const float ON_GEOM_TOLERANCE = 0.001f;
// Joints are grey until the user paints them.
const math::Vec4 JOINT_COLOR(0.5f, 0.5f, 0.5f, 1.0f);

// Hinges and springs stand in sets of their own in the simulation.
physics::LinkSet<physics::Hinge>& SetOf(const physics::Hinge*)
{
    return physics::Simulation::GetInstancePtr()->Hinges();
}

physics::LinkSet<physics::Joint>& SetOf(const physics::Joint*)
{
    return physics::Simulation::GetInstancePtr()->Joints();
}
} // namespace

JointEntity::JointEntity(float size) : m_size(size)
{
    SetColor(JOINT_COLOR);
}

JointEntity::~JointEntity() = default;

void JointEntity::Update(float)
{
    if (m_inTransform)
        return;
    for (int i = 0; i < 2; ++i)
        if (m_geoms[i])
            m_worldPos[i] = math::TransformCoordinate(m_geoms[i]->GetPose(), m_localPos[i]);
}

bool JointEntity::HasLiveGeoms() const
{
    const physics::Simulation* sim = physics::Simulation::GetInstancePtr();
    for (const GeomPtr& geom : m_geoms)
        if (!geom || !sim->HasBody(geom->GetBodyBody()))
            return false;
    return true;
}

bool JointEntity::IsAlive() const
{
    return HasLiveGeoms() && Entity::IsAlive();
}

void JointEntity::Transform(const math::TMat2D<float>& m)
{
    for (math::Vec2& p : m_worldPos)
        p = math::TransformCoordinate(m, p);
}

void JointEntity::GetBoundPoints(std::vector<math::Vec2>& points)
{
    points.push_back(m_worldPos[0]);
    points.push_back(m_worldPos[1]);
}

void JointEntity::SerializeTo(EntitySerializer& serializer) const
{
    Entity::SerializeTo(serializer);
    serializer.Set("size", m_size);
}

void JointEntity::Deserialize(const EntitySerializer& serializer)
{
    Entity::Deserialize(serializer);
    if (serializer.Has("size"))
    {
        const float size = serializer.Get<float>("size");
        // A joint of no size can't be seen or picked, and couldn't be written back.
        if (size > 0.0f && math::IsFinite(size))
            m_size = size;
        else
            Log(logging::Warning, "Ignoring bad joint size " + util::ToString(size));
    }
}

void JointEntity::CopyFrom(const Entity* source)
{
    Entity::CopyFrom(source);
    if (const JointEntity* joint = dynamic_cast<const JointEntity*>(source))
        m_size = joint->m_size;
}

void JointEntity::AttachAt(const math::Vec2 worldPoints[2])
{
    const physics::Simulation* sim = physics::Simulation::GetInstancePtr();
    GeomPtr hit[2];
    for (int i = 0; i < 2; ++i)
    {
        const GeomPtr& g = m_geoms[i];
        if (g && sim->HasBody(g->GetBodyBody()) && g != GeomPtr(sim->GetWorldGeom()) &&
            g->DistanceWorld(worldPoints[i]) < ON_GEOM_TOLERANCE)
            hit[i] = g;
    }
    for (int i = 0; i < 2; ++i)
    {
        if (hit[i])
            continue;
        for (const GeomPtr& g : Scene::GetInstancePtr()->GetGeomsAt(worldPoints[i], m_zDepth))
            if (g != hit[1 - i])
            {
                hit[i] = g;
                break;
            }
    }
    if (hit[0] && hit[1])
        AttachToWorld(hit[0], worldPoints[0], hit[1], worldPoints[1]);
    else
    {
        // Unattached, the joint dies at the next update of the scene.
        m_geoms[0] = nullptr;
        m_geoms[1] = nullptr;
    }
}

void JointEntity::AttachToLocal(GeomPtr g0, math::Vec2 local0, GeomPtr g1, math::Vec2 local1)
{
    m_geoms[0] = g0;
    m_geoms[1] = g1;
    m_localPos[0] = local0;
    m_localPos[1] = local1;
    for (int i = 0; i < 2; ++i)
        m_worldPos[i] = math::TransformCoordinate(m_geoms[i]->GetPose(), m_localPos[i]);
    CreateJoint();
}

void JointEntity::AttachToWorld(GeomPtr g0, math::Vec2 world0, GeomPtr g1, math::Vec2 world1)
{
    m_geoms[0] = g0;
    m_geoms[1] = g1;
    m_worldPos[0] = world0;
    m_worldPos[1] = world1;
    for (int i = 0; i < 2; ++i)
        m_localPos[i] = math::TransformCoordinate(m_geoms[i]->GetWorldToGeom(), m_worldPos[i]);
    CreateJoint();
}

void JointEntity::SetGeoms(const GeomPtr geoms[2])
{
    for (int i = 0; i < 2; ++i)
    {
        m_geoms[i] = geoms[i];
        m_localPos[i] = math::TransformCoordinate(m_geoms[i]->GetWorldToGeom(), m_worldPos[i]);
    }
    CreateJoint();
}

void JointEntity::GetBodies(util::SharedPtr<physics::Body> out[2]) const
{
    for (int i = 0; i < 2; ++i)
        out[i] = m_geoms[i] ? m_geoms[i]->GetBodyBody() : nullptr;
}

bool JointEntity::IsAttachedToWorld() const
{
    const GeomPtr world = physics::Simulation::GetInstancePtr()->GetWorldGeom();
    return m_geoms[0] == world || m_geoms[1] == world;
}

util::SharedPtr<physics::Circle> JointEntity::AsCircle() const
{
    return QLEX_NEW new physics::Circle(GetMidpoint(), m_size / 2.0f);
}

bool JointEntity::IsOnEntity(math::Vec2 worldPoint) const
{
    return AsCircle()->DistanceWorld(worldPoint) < 0.0f;
}

bool JointEntity::ErasedBy(const std::vector<physics::Linesegment>& stroke) const
{
    return AsCircle()->IntersectCountWorld(stroke) > 1;
}

bool JointEntity::IsContainedBy(const physics::Polygon& lasso) const
{
    return lasso.DistanceWorld(GetMidpoint()) < -m_size / 2.0f;
}

math::BoundingBox2 JointEntity::GetAABB() const
{
    const math::Vec2 half(m_size / 2.0f, m_size / 2.0f);
    return math::BoundingBox2(GetMidpoint() - half, GetMidpoint() + half);
}

float JointEntity::DefaultSize()
{
    return AppSettings::GetInstancePtr()->GetDefaultJointSize();
}

template <class P> void PhysicsJointEntity<P>::AddToSimulation()
{
    if (m_joint)
        SetOf(m_joint.get()).Add(m_joint);
}

template <class P> void PhysicsJointEntity<P>::RemoveFromSimulation()
{
    if (m_joint)
        SetOf(m_joint.get()).Remove(m_joint);
}

template <class P> bool PhysicsJointEntity<P>::IsAlive() const
{
    return JointEntity::IsAlive() && m_joint && SetOf(m_joint.get()).Has(m_joint);
}

template <class P> void PhysicsJointEntity<P>::Reassert()
{
    if (m_joint && !SetOf(m_joint.get()).Has(m_joint))
        AddToSimulation();
}

template <class P> void PhysicsJointEntity<P>::CreateJoint()
{
    RemoveFromSimulation();
    m_joint = MakeJoint();
    AddToSimulation();
}

template class PhysicsJointEntity<physics::Hinge>;
template class PhysicsJointEntity<physics::SpringJoint>;

} // namespace app
