#include "app/Transformer.h"

#include "app/Scene.h"
#include "app/entities/GeomEntity.h"
#include "app/entities/JointEntity.h"
#include "app/entities/PenEntity.h"
#include "app/entities/SpringEntity.h"
#include "logging/Log.h"
#include "physics/Simulation.h"

namespace app
{

namespace
{
// How far outside its geom an anchor may lie and still count as on it, in metres.
const float ANCHOR_TOLERANCE = 0.001f;
} // namespace

Transformer::Transformer(GroupPtr group) : m_group(group)
{
    Scene* scene = Scene::GetInstancePtr();
    scene->DepthTagEntities();
    for (const EntityPtr& entity : m_group->GetEntities())
    {
        GeomEntity* geomEntity = dynamic_cast<GeomEntity*>(entity.get());
        if (!geomEntity)
            continue;
        m_geoms.insert(geomEntity->GetGeom());
        if (util::SharedPtr<physics::Body> body = geomEntity->GetBody())
            body->SetHeld(true);
        m_entities.push_back(entity);
    }

    const util::SharedPtr<physics::Body>& world = physics::Simulation::GetInstancePtr()->GetWorldBody();
    for (const EntityPtr& entity : scene->GetEntities())
    {
        JointEntity* joint = dynamic_cast<JointEntity*>(entity.get());
        if (!joint)
            continue;
        bool in[2];
        bool onWorld[2];
        for (int i = 0; i < 2; ++i)
        {
            in[i] = joint->m_geoms[i] && m_geoms.Contains(joint->m_geoms[i]);
            onWorld[i] = joint->m_geoms[i] && joint->m_geoms[i]->GetBodyBody() == world.get();
        }
        const bool member = m_group->Contains(entity);
        if (member && in[0] && in[1])
            continue;
        if (!member)
        {
            if (dynamic_cast<SpringEntity*>(joint))
                continue;
            if (!((in[0] && onWorld[1]) || (in[1] && onWorld[0])))
                continue;
        }
        JointInfo info;
        info.joint = util::SharedPtr<JointEntity>(joint);
        for (int i = 0; i < 2; ++i)
        {
            info.fix[i] = !in[i];
            info.worldPos[i] = joint->m_worldPos[i];
        }
        m_joints.push_back(info);
        m_entities.push_back(entity);
    }

    for (const EntityPtr& entity : m_group->GetEntities())
    {
        PenEntity* pen = dynamic_cast<PenEntity*>(entity.get());
        if (pen && !(pen->m_geom && m_geoms.Contains(pen->m_geom)))
            m_entities.push_back(entity);
    }

    for (const EntityPtr& entity : m_entities)
        entity->StartTransform();
}

Transformer::~Transformer()
{
    try
    {
        End();
    }
    catch (std::exception& e)
    {
        CatchException(e, QLEX_SITE);
    }
}

void Transformer::Transform(const math::Mat2D& m)
{
    for (const EntityPtr& entity : m_entities)
        entity->Transform(m);
    for (JointInfo& info : m_joints)
    {
        for (math::Vec2& p : info.worldPos)
            p = math::TransformCoordinate(m, p);
    }
}

void Transformer::End()
{
    if (m_ended)
        return;
    m_ended = true;
    for (const JointInfo& info : m_joints)
        ApplyJoint(info);
    for (const EntityPtr& entity : m_entities)
        entity->EndTransform();
    for (const EntityPtr& entity : m_group->GetEntities())
    {
        if (GeomEntity* geomEntity = dynamic_cast<GeomEntity*>(entity.get()))
        {
            if (util::SharedPtr<physics::Body> body = geomEntity->GetBody())
                body->SetHeld(false);
        }
    }
}

void Transformer::ApplyJoint(const JointInfo& info) const
{
    Scene* scene = Scene::GetInstancePtr();
    JointEntity& joint = *info.joint;
    const util::SharedPtr<physics::Geom> worldGeom = physics::Simulation::GetInstancePtr()->GetWorldGeom();
    util::SharedPtr<physics::Geom> g[2] = {joint.m_geoms[0], joint.m_geoms[1]};
    math::Vec2 local[2] = {joint.m_localPos[0], joint.m_localPos[1]};

    for (int i = 0; i < 2; ++i)
    {
        if (info.fix[i] && g[i] && g[i]->DistanceWorld(info.worldPos[i]) > ANCHOR_TOLERANCE)
            g[i] = nullptr;
    }
    for (int i = 0; i < 2; ++i)
    {
        if (!info.fix[i])
            continue;
        const math::Vec2 p = info.worldPos[i];
        if (!g[i])
        {
            for (const util::SharedPtr<physics::Geom>& candidate : scene->GetGeomsAt(p, joint.m_zDepth))
            {
                if (candidate != g[1 - i])
                {
                    g[i] = candidate;
                    break;
                }
            }
        }
        else
        {
            float depth = -math::INF;
            bool search = true;
            if (g[i] != worldGeom)
            {
                util::SharedPtr<GeomEntity> owner = scene->GetGeomEntity(g[i]);
                if (owner)
                {
                    depth = owner->m_zDepth;
                }
                else
                {
                    Log(logging::Error, "Geom had no matching GeomEntity");
                    search = false;
                }
            }
            if (search)
            {
                for (const util::SharedPtr<physics::Geom>& candidate :
                     scene->GetGeomsAt(p, std::make_pair(depth, joint.m_zDepth)))
                {
                    if (candidate != g[0] && candidate != g[1] && !m_geoms.Contains(candidate))
                    {
                        g[i] = candidate;
                        break;
                    }
                }
            }
        }
        if (g[i])
            local[i] = math::TransformCoordinate(g[i]->GetWorldToGeom(), p);
    }

    if (g[0] && g[1])
        joint.AttachToLocal(g[0], local[0], g[1], local[1]);
    else
        scene->RemoveEntity(info.joint);
}

} // namespace app
