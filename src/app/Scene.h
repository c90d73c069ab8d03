#pragma once
// The document: the entities in drawing order, the named groups, the selection and the camera, with
// the operations that must see all of them at once (picking, selecting, moving, scaling, mirroring,
// cloning) and the upkeep of each frame that keeps the entity list and the physics world in step.
// Scripts see it as "Scene".

#include "app/Camera.h"
#include "app/Group.h"
#include "app/entities/Entity.h"
#include "input/Events.h"
#include "math/Math.h"
#include "physics/Body.h"
#include "script/AttribWrapper.h"
#include "script/Reflected.h"
#include "util/Callback.h"
#include "util/Singleton.h"

#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace physics
{
class Polygon;
}

namespace app
{
class GeomEntity;

// Keeps the drawing order: a lower depth is drawn first.
struct DepthComp
{
    bool operator()(const EntityPtr& a, const EntityPtr& b) const { return a->m_zDepth < b->m_zDepth; }
};

class Scene : public script::Reflected, public util::Singleton<Scene>
{
public:
    typedef std::vector<util::SharedPtr<physics::Geom>> GeomList;

    Scene();
    ~Scene() override;

    // Membership. AddEntity ignores null and entities already held; RemoveEntity ignores strangers.
    void AddEntity(EntityPtr entity);
    void RemoveEntity(EntityPtr entity);
    bool HasEntity(const EntityPtr& entity) const;
    const std::vector<EntityPtr>& GetEntities() const { return m_entityList; }
    GroupPtr GetAsGroup() const;
    // The geoms of all live geometry entities, and the world geom.
    physics::Body::GeomSet GetAllGeoms() const;
    util::SharedPtr<GeomEntity> GetGeomEntity(const util::SharedPtr<physics::Geom>& geom) const;

    // Depth: each entity's m_zDepth mirrors its place in the list.
    void DepthTagEntities();
    void SortByDepth();
    void MoveToFront(const GroupPtr& group);
    void MoveToBack(const GroupPtr& group);

    // Picking, from the top of the list down; depth ranges are open at both ends.
    std::vector<EntityPtr> GetEntitiesAt(math::Vec2 p, std::pair<float, float> depthRange) const;
    std::vector<EntityPtr> GetEntitiesAt(math::Vec2 p, float maxDepth) const;
    EntityPtr GetEntityAt(math::Vec2 p) const;
    // With a range from minus infinity the world geom comes last, so that the list is never empty.
    GeomList GetGeomsAt(math::Vec2 p, std::pair<float, float> depthRange) const;
    GeomList GetGeomsAt(math::Vec2 p, float maxDepth) const;
    util::SharedPtr<physics::Geom> GetGeomAt(math::Vec2 p, float maxDepth) const;
    util::SharedPtr<physics::Geom> GetGeomAtMousePos() const;
    bool IsWaterAt(math::Vec2 p) const;

    // Groups. The selection and the tracked group are groups of their own, kept also by name.
    void AddGroup(const GroupPtr& group);
    void RemoveGroup(const GroupPtr& group);
    GroupPtr GetGroupByName(const util::String& name) const;
    GroupPtr GetOrCreateGroupByName(const util::String& name);
    const util::HashSet<GroupPtr>& GetGroups() const { return m_groups; }

    // Selection.
    const GroupPtr& GetSelection() const { return m_selection; }
    void SetSelection(const GroupPtr& group);
    GroupPtr GetSelectionAt(math::Vec2 p) const;
    bool SelectAt(math::Vec2 p);
    void OnNewSelection(const GroupPtr& group);
    bool IsSelection(const physics::Polygon& lasso);
    void SelectChain(const EntitySet& entities);

    // What the camera follows: null for nothing.
    const GroupPtr& GetTrackedGroup() const { return m_trackedGroup; }
    void SetTrackedGroup(const GroupPtr& group);

    // Geometry operations.
    GroupPtr Widen(const GroupPtr& group) const;
    void MoveTransform(GroupPtr group, const math::Mat2D& m, bool widen);
    void ScaleTransform(const GroupPtr& group, const math::Mat3& transform);
    void MirrorLongestAxis(const GroupPtr& group);
    GroupPtr CreateClone(const GroupPtr& group, math::Vec2 offset);
    math::BoundingBox2 CalcAABB() const;
    void MoveToOrigo();
    void ZoomToScene();

    // Lifecycle.
    void Update(float dt);
    void FlushBodies();
    void ClearScene();
    void NewScene();
    void ClearSceneUndoable();
    void NewSceneUndoable();
    void ReassertJoints();
    void SetTitle(const util::String& name);

    const util::SharedPtr<Camera>& GetCamera() const { return m_camera; }
    // The pointer in world coordinates; the middle of the view where there is no pointer.
    math::Vec2 GetMousePos() const;

    // Outside parts that a cleared scene must let go of (the current tool, widgets bound to groups).
    void AddOnClearCallback(const util::CallbackPtr& callback) { m_onClear.Add(callback); }
    // Where the title of the window goes; the windowed program sets it.
    void SetWindowTitleSink(std::function<void(const util::String&)> sink);

    // What the scene asks of the keyboard and the pointer. The windowed program fills it; without it no
    // modifier is held and the pointer stands in the middle of the view.
    struct PointerSource
    {
        std::function<bool(input::Modifier)> isModifierHeld;
        // In GUI coordinates; nothing while no pointer is known.
        std::function<std::optional<math::Vec2>()> position;
    };
    void SetPointerSource(PointerSource source) { m_pointer = std::move(source); }
    bool IsModifierHeld(input::Modifier modifier) const;

    script::AttribWrapper<util::String> m_title;
    script::AttribWrapper<util::String> m_author;
    script::AttribWrapper<util::String> m_description;

private:
    void OnTitleChange();
    void CheckInvariant() const;

    std::vector<EntityPtr> m_entityList;
    EntitySet m_entitySet;
    util::HashSet<GroupPtr> m_groups;
    GroupPtr m_selection;
    GroupPtr m_trackedGroup;
    util::SharedPtr<Camera> m_camera;
    util::CallbackSet m_onClear;
    std::function<void(const util::String&)> m_windowTitleSink;
    PointerSource m_pointer;
};

} // namespace app
