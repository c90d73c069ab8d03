#include "app/Scene.h"

#include "app/entities/GeomEntity.h"
#include "logging/Log.h"
#include "physics/Simulation.h"
#include "util/Profiler.h"

#include <algorithm>

namespace app
{

Scene::Scene() : script::Reflected("Scene"), m_camera(QLEX_NEW new Camera())
{
    AddReflectedChild(m_camera);
}

Scene::~Scene() = default;

void Scene::Update(float dt)
{
    util::ScopeProfiler profile("Scene::Update");
    std::vector<EntityPtr> dead;
    for (const EntityPtr& entity : std::vector<EntityPtr>(m_entityList))
    {
        if (!entity->IsAlive())
            dead.push_back(entity);
        else
            entity->Update(dt);
    }
    for (const EntityPtr& entity : dead)
        RemoveEntity(entity);
}

void Scene::AddEntity(EntityPtr entity)
{
    if (!entity || m_entitySet.Contains(entity))
        return;
    if (entity->m_zDepth == Entity::NO_DEPTH)
        entity->m_zDepth = m_entityList.empty() ? 0.0f : m_entityList.back()->m_zDepth + 1.0f;
    m_entityList.push_back(entity);
    m_entitySet.insert(entity);
    entity->AddToSimulation();
}

void Scene::RemoveEntity(EntityPtr entity)
{
    if (!HasEntity(entity))
        return;
    m_entityList.erase(std::find(m_entityList.begin(), m_entityList.end(), entity));
    m_entitySet.erase(entity);
    try
    {
        entity->RemoveFromSimulation();
    }
    catch (std::exception& e)
    {
        Log(logging::Warning,
            util::String("Exception caught when removing entity from simulation:") + e.what());
    }
}

bool Scene::HasEntity(const EntityPtr& entity) const
{
    return entity && m_entitySet.Contains(entity);
}

void Scene::ClearScene()
{
    for (const EntityPtr& entity : std::vector<EntityPtr>(m_entityList))
        RemoveEntity(entity);
}

physics::Body::GeomSet Scene::GetAllGeoms() const
{
    physics::Body::GeomSet geoms;
    for (const EntityPtr& entity : m_entityList)
        if (const GeomEntity* geomEntity = dynamic_cast<const GeomEntity*>(entity.get()))
            if (geomEntity->IsAlive())
                geoms.insert(geomEntity->GetGeom());
    geoms.insert(physics::Simulation::GetInstancePtr()->GetWorldGeom());
    return geoms;
}

std::vector<util::SharedPtr<physics::Geom>> Scene::GetGeomsAt(math::Vec2 p, float maxDepth) const
{
    std::vector<util::SharedPtr<physics::Geom>> geoms;
    for (auto it = m_entityList.rbegin(); it != m_entityList.rend(); ++it)
        if (const GeomEntity* geomEntity = dynamic_cast<const GeomEntity*>(it->get()))
            if (geomEntity->m_zDepth < maxDepth && geomEntity->IsOnEntity(p))
                geoms.push_back(geomEntity->GetGeom());
    geoms.push_back(physics::Simulation::GetInstancePtr()->GetWorldGeom());
    return geoms;
}

util::SharedPtr<physics::Geom> Scene::GetGeomAt(math::Vec2 p, float maxDepth) const
{
    return GetGeomsAt(p, maxDepth).front();
}

} // namespace app
