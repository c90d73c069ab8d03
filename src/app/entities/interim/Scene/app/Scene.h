#pragma once

// INTERIM STAND-IN for app::Scene, which the scene model builds: the entity list with its membership,
// picking of geoms and the per-frame upkeep, as far as entities ask for them. The build uses this folder
// only while src/app/Scene.h does not exist; delete it when it does.

#include "app/entities/Entity.h"
#include "physics/Body.h"
#include "util/Singleton.h"

#include <vector>

namespace app
{
class Scene : public script::Reflected, public util::Singleton<Scene>
{
public:
    Scene();

    void AddEntity(EntityPtr entity);
    void RemoveEntity(EntityPtr entity);
    bool HasEntity(const EntityPtr& entity) const;
    const std::vector<EntityPtr>& GetEntities() const { return m_entityList; }
    void Update(float dt);
    void ClearScene();

    // The geoms of all live geometry entities, and the world geom.
    physics::Body::GeomSet GetAllGeoms() const;
    // Geoms of the geometry entities under p that lie strictly deeper than maxDepth, top first, and the
    // world geom last.
    std::vector<util::SharedPtr<physics::Geom>> GetGeomsAt(math::Vec2 p, float maxDepth) const;
    util::SharedPtr<physics::Geom> GetGeomAt(math::Vec2 p, float maxDepth) const;

private:
    std::vector<EntityPtr> m_entityList;
    EntitySet m_entitySet;
};
} // namespace app
