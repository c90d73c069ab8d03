#pragma once

// The document as far as the drawing of the world and the entities need it: the camera, a reflected child
// under the name "Camera", the entity list with its membership, picking of geoms, and the per-frame upkeep.
// The full scene (groups, selection, depth order, its commands) takes the place of this class under the
// same names.

#include "app/Camera.h"
#include "app/entities/Entity.h"
#include "physics/Body.h"
#include "script/Reflected.h"
#include "util/SharedPtr.h"
#include "util/Singleton.h"

#include <vector>

namespace app
{

class Scene : public script::Reflected, public util::Singleton<Scene>
{
public:
    Scene();
    ~Scene() override;

    const util::SharedPtr<Camera>& GetCamera() const { return m_camera; }
    void Update(float dt);

    // AddEntity ignores null and entities already held; RemoveEntity ignores strangers.
    void AddEntity(EntityPtr entity);
    void RemoveEntity(EntityPtr entity);
    bool HasEntity(const EntityPtr& entity) const;
    const std::vector<EntityPtr>& GetEntities() const { return m_entityList; }
    void ClearScene();

    // The geoms of all live geometry entities, and the world geom.
    physics::Body::GeomSet GetAllGeoms() const;
    // Geoms of the geometry entities under p that lie strictly deeper than maxDepth, top first, and the
    // world geom last.
    std::vector<util::SharedPtr<physics::Geom>> GetGeomsAt(math::Vec2 p, float maxDepth) const;
    util::SharedPtr<physics::Geom> GetGeomAt(math::Vec2 p, float maxDepth) const;

private:
    util::SharedPtr<Camera> m_camera;
    std::vector<EntityPtr> m_entityList;
    EntitySet m_entitySet;
};

} // namespace app
