#include "app/entities/FixJointEntity.h"
#include "app/entities/EntityPainter.h"

#include "app/AppSettings.h"
#include "app/Scene.h"
#include "logging/Log.h"
#include "physics/Plane.h"
#include "physics/Simulation.h"

#include <vector>

namespace app
{
void AddGeomAndConnected(physics::Geom* geom, const GeomGraph& graph, std::set<physics::Geom*>& out)
{
    std::vector<physics::Geom*> open{geom};
    while (!open.empty())
    {
        physics::Geom* g = open.back();
        open.pop_back();
        if (!out.insert(g).second)
            continue;
        const auto it = graph.find(g);
        if (it != graph.end())
            open.insert(open.end(), it->second.begin(), it->second.end());
    }
}

std::set<physics::Geom*> Intersection(const std::set<physics::Geom*>& a, const GeomSet& b)
{
    std::set<physics::Geom*> result;
    for (physics::Geom* g : a)
        if (b.Contains(GeomPtr(g)))
            result.insert(g);
    return result;
}

FixJointEntity::FixJointEntity(float size) : JointEntity(size) {}

math::Mat2D FixJointEntity::GetPose() const
{
    math::Mat2D pose = math::Mat2D::Translation(GetMidpoint());
    if (m_fixedGeoms[0] && m_fixedGeoms[0]->GetBodyBody())
        pose = math::Mat2D::TranslationRotation(GetMidpoint(), m_fixedGeoms[0]->GetBodyBody()->GetAngle());
    return pose;
}

bool FixJointEntity::IsAlive() const
{
    if (!JointEntity::IsAlive())
        return false;
    util::SharedPtr<physics::Body> bodies[2];
    GetBodies(bodies);
    return bodies[0] && bodies[0] == bodies[1];
}

void FixJointEntity::SerializeTo(EntitySerializer& serializer) const
{
    if (IsAlive())
        JointEntity::SerializeTo(serializer);
}

JointEntityPtr FixJointEntity::Clone() const
{
    return CloneAs<FixJointEntity>();
}

void FixJointEntity::Reassert()
{
    util::SharedPtr<physics::Body> bodies[2];
    GetBodies(bodies);
    if (bodies[0] && bodies[0] == bodies[1])
        return;
    AddToSimulation();
}

void FixJointEntity::CreateJoint()
{
    if (m_geoms[0] == m_fixedGeoms[0] && m_geoms[1] == m_fixedGeoms[1])
        return;
    RemoveFromSimulation();
    AddToSimulation();
}

void FixJointEntity::AddToSimulation()
{
    if (!m_geoms[0] || !m_geoms[1])
        return;
    physics::Simulation* sim = physics::Simulation::GetInstancePtr();
    m_fixedGeoms[0] = m_geoms[0];
    m_fixedGeoms[1] = m_geoms[1];
    const util::SharedPtr<physics::Body> b0 = m_geoms[0]->GetBodyBody();
    const util::SharedPtr<physics::Body> b1 = m_geoms[1]->GetBodyBody();
    if (!b0 && !b1)
    {
        util::SharedPtr<physics::Body> body = QLEX_NEW new physics::Body();
        GeomSet both;
        both.insert(m_geoms[0]);
        both.insert(m_geoms[1]);
        body->SetGeoms(both);
        sim->AddBody(body);
    }
    else if (!b0)
        b1->AddGeom(m_geoms[0]);
    else if (!b1)
        b0->AddGeom(m_geoms[1]);
    else if (b0 != b1)
    {
        // The older body survives: the world body, id 0, always does.
        const util::SharedPtr<physics::Body> survivor = b0->GetId() < b1->GetId() ? b0 : b1;
        const util::SharedPtr<physics::Body> other = survivor == b0 ? b1 : b0;
        GeomSet all = survivor->GetGeoms();
        for (const GeomPtr& g : other->GetGeoms())
            all.insert(g);
        other->SetGeoms(GeomSet());
        sim->RemoveBody(other);
        survivor->SetGeoms(all);
    }
}

void FixJointEntity::RemoveFromSimulation()
{
    try
    {
        Split();
    }
    catch (std::exception& e)
    {
        Log(logging::Warning, util::String("Error while removing fixate: ") + e.what());
    }
}

void FixJointEntity::Split()
{
    if (!m_fixedGeoms[0] || !m_fixedGeoms[1])
        return;
    physics::Simulation* sim = physics::Simulation::GetInstancePtr();
    const util::SharedPtr<physics::Body> b0 = m_fixedGeoms[0]->GetBodyBody();
    const util::SharedPtr<physics::Body> b1 = m_fixedGeoms[1]->GetBodyBody();
    if (b0 && b1 && b0 != b1)
        return;
    const util::SharedPtr<physics::Body> body = b0 ? b0 : b1;
    if (!body)
        return;

    physics::Geom* fixed[2] = {m_fixedGeoms[0].get(), m_fixedGeoms[1].get()};
    physics::Geom* worldGeom = sim->GetWorldGeom().get();
    GeomSet all = Scene::GetInstancePtr()->GetAllGeoms();

    // Who holds whom: the other fixates, and every plane holds the world.
    GeomGraph graph;
    for (const EntityPtr& entity : Scene::GetInstancePtr()->GetEntities())
    {
        const FixJointEntity* fixate = dynamic_cast<const FixJointEntity*>(entity.get());
        if (!fixate || fixate == this || !fixate->m_geoms[0] || !fixate->m_geoms[1])
            continue;
        graph[fixate->m_geoms[0].get()].insert(fixate->m_geoms[1].get());
        graph[fixate->m_geoms[1].get()].insert(fixate->m_geoms[0].get());
    }
    GeomSet withFixed = all;
    withFixed.insert(m_fixedGeoms[0]);
    withFixed.insert(m_fixedGeoms[1]);
    for (const GeomPtr& g : withFixed)
        if (g->GetKind() == physics::Geom::Kind::Plane)
        {
            graph[g.get()].insert(worldGeom);
            graph[worldGeom].insert(g.get());
        }

    std::set<physics::Geom*> sides[2];
    for (int i = 0; i < 2; ++i)
    {
        AddGeomAndConnected(fixed[i], graph, sides[i]);
        // Geoms that have left the scene are no side of anything.
        sides[i] = Intersection(sides[i], all);
    }
    const bool isWorld = body == sim->GetWorldBody();

    if (sides[0].empty() && sides[1].empty())
    {
        QLEX_ASSERT(body->GetId() != 0);
        body->SetGeoms(GeomSet());
        sim->RemoveBody(body);
    }
    else if (sides[0] != sides[1])
    {
        // The side that still reaches the world stays on a world body; the other one leaves.
        if ((isWorld && sides[1].count(worldGeom)) || (!isWorld && sides[0].count(worldGeom)))
            std::swap(sides[0], sides[1]);
        if (!(isWorld && !sides[0].count(worldGeom)))
        {
            GeomSet leaving;
            for (physics::Geom* g : sides[1])
            {
                leaving.insert(GeomPtr(g));
                body->RemoveGeom(GeomPtr(g));
            }
            if (leaving.size() != 0)
            {
                if (sides[1].count(worldGeom))
                    sim->GetWorldBody()->AddGeoms(leaving);
                else
                {
                    util::SharedPtr<physics::Body> newBody = QLEX_NEW new physics::Body();
                    newBody->SetGeoms(leaving);
                    if (!newBody->IsImmovable())
                    {
                        newBody->SetVelocity(body->GetVelocity());
                        newBody->SetAngularVelocity(body->GetAngularVelocity());
                    }
                    sim->AddBody(newBody);
                }
            }
        }
    }
    m_fixedGeoms[0] = nullptr;
    m_fixedGeoms[1] = nullptr;
}

void FixJointEntity::Draw() const
{
    EntityPainter::Paint(*this);
}

} // namespace app
