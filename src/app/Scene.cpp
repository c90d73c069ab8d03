#include "app/Scene.h"

#include "app/Chain.h"
#include "app/FileInfo.h"
#include "app/SceneFiles.h"
#include "app/Settings.h"
#include "app/Snapshot.h"
#include "app/Transformer.h"
#include "app/Undoer.h"
#include "app/entities/GeomEntity.h"
#include "app/entities/JointEntity.h"
#include "app/entities/PenEntity.h"
#include "app/entities/PlaneEntity.h"
#include "app/entities/SpringEntity.h"
#include "logging/Log.h"
#include "physics/Particle.h"
#include "physics/Polygon.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "util/FileSystem.h"
#include "util/Profiler.h"
#include "util/StringUtil.h"

#include <algorithm>
#include <cmath>

namespace app
{

namespace
{
// Water counts as there within this many particle radii of a point.
const float WATER_REACH = 2.2f;
// Fraction of the view that a zoomed scene leaves free around it.
const float ZOOM_MARGIN = 1.1f;
// Half-extents closer than this fraction of their mean make a square, which has no long axis.
const float SQUARE_TOLERANCE = 0.025f;
const float ANCHOR_TOLERANCE = 0.001f;

bool IsFiniteBox(const math::BoundingBox2& box)
{
    return math::IsFinite(box.min.x) && math::IsFinite(box.min.y) && math::IsFinite(box.max.x) &&
           math::IsFinite(box.max.y);
}

bool IsIdentity(const math::Mat3& m)
{
    const math::Mat3 identity;
    for (int i = 0; i < 9; ++i)
    {
        if (m[i] != identity[i])
            return false;
    }
    return true;
}

// The geom's local frame taken through `transform` into the frame of `target`: where a point fixed on
// the old geom lies on its scaled replacement.
math::Vec2 MapLocalPoint(const physics::Geom& oldGeom, const physics::Geom& target,
                         const math::Mat3& transform, const math::Vec2& local)
{
    const math::Vec2 world = math::TransformCoordinate(oldGeom.GetPose(), local);
    return math::TransformCoordinate(target.GetWorldToGeom(), math::TransformCoordinate(transform, world));
}

} // namespace

Scene::Scene()
    : script::Reflected("Scene"), m_title(this, "title", ""), m_author(this, "author", ""),
      m_description(this, "description", ""), m_camera(QLEX_NEW new Camera())
{
    m_selection = QLEX_NEW new Group(SelectedName);
    ClearScene();
    m_title->AddChangeCallback(util::MakeCallback(&Scene::OnTitleChange, this));
    AddReflectedChild(m_camera);
    AddMemberCmd("Clear", &Scene::ClearScene);
    AddMemberCmd("New", &Scene::NewScene);
    AddMemberCmd("MoveToOrigo", &Scene::MoveToOrigo);
    AddVoidCmd("EraseWater", [] { physics::Simulation::GetInstancePtr()->EraseWater(); });
}

Scene::~Scene() = default;

void Scene::CheckInvariant() const
{
    QLEX_ASSERT(m_entityList.size() == m_entitySet.size());
}

// ---------------------------------------------------------------------------------------------------
// Membership

void Scene::AddEntity(EntityPtr entity)
{
    if (!entity || HasEntity(entity))
        return;
    m_entityList.push_back(entity);
    m_entitySet.insert(entity);
    CheckInvariant();
    if (entity->m_zDepth != Entity::NO_DEPTH)
    {
        for (size_t i = m_entityList.size() - 1; i > 0 && m_entityList[i - 1]->m_zDepth > entity->m_zDepth;
             --i)
            std::swap(m_entityList[i - 1], m_entityList[i]);
    }
    else if (m_entityList.size() == 1)
    {
        entity->m_zDepth = 0.0f;
    }
    else
    {
        entity->m_zDepth = m_entityList[m_entityList.size() - 2]->m_zDepth + 1.0f;
    }
    entity->AddToSimulation();
}

void Scene::RemoveEntity(EntityPtr entity)
{
    if (!HasEntity(entity))
        return;
    auto it = std::find(m_entityList.begin(), m_entityList.end(), entity);
    if (it != m_entityList.end())
        m_entityList.erase(it);
    m_entitySet.EraseKey(entity);
    CheckInvariant();
    try
    {
        entity->RemoveFromSimulation();
    }
    catch (std::exception& e)
    {
        CatchException(e, QLEX_SITE);
        Log(logging::Warning,
            util::String("Exception caught when removing entity from simulation: ") + e.what());
    }
}

bool Scene::HasEntity(const EntityPtr& entity) const
{
    return entity && m_entitySet.find(entity) != m_entitySet.end();
}

GroupPtr Scene::GetAsGroup() const
{
    return QLEX_NEW new Group(m_entitySet);
}

physics::Body::GeomSet Scene::GetAllGeoms() const
{
    physics::Body::GeomSet geoms;
    for (const EntityPtr& entity : m_entityList)
    {
        GeomEntity* geomEntity = dynamic_cast<GeomEntity*>(entity.get());
        if (geomEntity && geomEntity->IsAlive())
            geoms.insert(geomEntity->GetGeom());
    }
    geoms.insert(physics::Simulation::GetInstancePtr()->GetWorldGeom());
    return geoms;
}

util::SharedPtr<GeomEntity> Scene::GetGeomEntity(const util::SharedPtr<physics::Geom>& geom) const
{
    for (const EntityPtr& entity : m_entityList)
    {
        GeomEntity* geomEntity = dynamic_cast<GeomEntity*>(entity.get());
        if (geomEntity && geomEntity->GetGeom() == geom)
            return util::SharedPtr<GeomEntity>(geomEntity);
    }
    return nullptr;
}

// ---------------------------------------------------------------------------------------------------
// Depth

void Scene::DepthTagEntities()
{
    for (size_t i = 0; i < m_entityList.size(); ++i)
    {
        // Two exact halves: a float holds every index below 2^24 exactly, but not the product of one
        // conversion of a larger integer.
        const size_t high = i >> 16;
        const size_t low = i & 0xffff;
        m_entityList[i]->m_zDepth = float(high) * 65536.0f + float(low);
    }
}

void Scene::SortByDepth()
{
    std::stable_sort(m_entityList.begin(), m_entityList.end(), DepthComp());
}

void Scene::MoveToFront(const GroupPtr& group)
{
    std::stable_partition(m_entityList.begin(), m_entityList.end(),
                          [&](const EntityPtr& e) { return !group->Contains(e); });
    DepthTagEntities();
}

void Scene::MoveToBack(const GroupPtr& group)
{
    std::stable_partition(m_entityList.begin(), m_entityList.end(),
                          [&](const EntityPtr& e) { return group->Contains(e); });
    DepthTagEntities();
}

// ---------------------------------------------------------------------------------------------------
// Picking

std::vector<EntityPtr> Scene::GetEntitiesAt(math::Vec2 p, std::pair<float, float> depthRange) const
{
    std::vector<EntityPtr> result;
    for (auto it = m_entityList.rbegin(); it != m_entityList.rend(); ++it)
    {
        const float depth = (*it)->m_zDepth;
        if (depth > depthRange.first && depth < depthRange.second && (*it)->IsOnEntity(p))
            result.push_back(*it);
    }
    return result;
}

std::vector<EntityPtr> Scene::GetEntitiesAt(math::Vec2 p, float maxDepth) const
{
    return GetEntitiesAt(p, std::make_pair(-math::INF, maxDepth));
}

EntityPtr Scene::GetEntityAt(math::Vec2 p) const
{
    std::vector<EntityPtr> entities = GetEntitiesAt(p, math::INF);
    return entities.empty() ? EntityPtr() : entities.front();
}

Scene::GeomList Scene::GetGeomsAt(math::Vec2 p, std::pair<float, float> depthRange) const
{
    GeomList geoms;
    for (const EntityPtr& entity : GetEntitiesAt(p, depthRange))
    {
        if (GeomEntity* geomEntity = dynamic_cast<GeomEntity*>(entity.get()))
            geoms.push_back(geomEntity->GetGeom());
    }
    if (depthRange.first == -math::INF)
        geoms.push_back(physics::Simulation::GetInstancePtr()->GetWorldGeom());
    return geoms;
}

Scene::GeomList Scene::GetGeomsAt(math::Vec2 p, float maxDepth) const
{
    return GetGeomsAt(p, std::make_pair(-math::INF, maxDepth));
}

util::SharedPtr<physics::Geom> Scene::GetGeomAt(math::Vec2 p, float maxDepth) const
{
    return GetGeomsAt(p, maxDepth).front();
}

util::SharedPtr<physics::Geom> Scene::GetGeomAtMousePos() const
{
    return GetGeomAt(GetMousePos(), math::INF);
}

bool Scene::IsWaterAt(math::Vec2 p) const
{
    const float reach = WATER_REACH * physics::SPH::GetInstancePtr()->m_radius;
    for (const util::SharedPtr<physics::Particle>& particle :
         physics::Simulation::GetInstancePtr()->GetParticles())
    {
        if (math::DistanceSq(particle->GetPosition(), p) < reach * reach)
            return true;
    }
    return false;
}

// ---------------------------------------------------------------------------------------------------
// Groups and selection

void Scene::AddGroup(const GroupPtr& group)
{
    if (!group || m_groups.Contains(group))
        return;
    if (group->GetName() == SelectedName)
    {
        SetSelection(group);
        if (!GetGroupByName(SelectedName))
            m_groups.insert(group);
        return;
    }
    if (group->GetName() == TrackedName)
    {
        SetTrackedGroup(group);
        return;
    }
    m_groups.insert(group);
}

void Scene::RemoveGroup(const GroupPtr& group)
{
    if (group == m_selection)
        return;
    m_groups.EraseKey(group);
}

GroupPtr Scene::GetGroupByName(const util::String& name) const
{
    for (const GroupPtr& group : m_groups)
    {
        if (group->GetName() == name)
            return group;
    }
    return nullptr;
}

GroupPtr Scene::GetOrCreateGroupByName(const util::String& name)
{
    if (GroupPtr group = GetGroupByName(name))
        return group;
    GroupPtr group = QLEX_NEW new Group(name);
    AddGroup(group);
    return GetGroupByName(name) ? GetGroupByName(name) : group;
}

void Scene::SetSelection(const GroupPtr& group)
{
    EntitySet members = group ? group->GetEntities() : EntitySet();
    m_selection->Clear();
    m_selection->AddAll(members);
}

void Scene::SetTrackedGroup(const GroupPtr& requested)
{
    if (requested && requested == m_trackedGroup)
        return;
    // The selection keeps its name: following it follows its present members.
    const GroupPtr group = requested == m_selection ? requested->ShallowClone() : requested;
    // One group at a time is followed, and it is the one group of the scene named "tracked".
    if (m_trackedGroup)
    {
        const GroupPtr old = m_trackedGroup;
        m_trackedGroup = nullptr;
        RemoveGroup(old);
    }
    m_camera->SetTracked(nullptr);
    if (!group)
        return;
    group->SetName(TrackedName);
    util::WeakPtr<Group> weak(group);
    m_camera->SetTracked([weak]() { return Camera::GetGroupCenter(weak.lock()); });
    // A group without a finite centre can't be followed, and is dropped.
    if (!m_camera->IsTracking())
        return;
    m_trackedGroup = group;
    m_groups.insert(group);
}

GroupPtr Scene::GetSelectionAt(math::Vec2 p) const
{
    GroupPtr result = QLEX_NEW new Group();
    EntityPtr entity = GetEntityAt(p);
    if (!entity)
        return result;
    result->Add(entity);
    if (IsModifierHeld(input::Alt))
        return result;
    if (entity->m_chain)
    {
        for (const EntityPtr& neighbor : entity->m_chain->GetNeighbors(entity, false))
            result->Add(neighbor);
    }
    for (const GroupPtr& group : m_groups)
    {
        if (group == m_selection || group == m_trackedGroup)
            continue;
        if (group->Contains(entity))
            result->AddAll(group);
    }
    return result;
}

void Scene::OnNewSelection(const GroupPtr& group)
{
    if (m_selection->IsEmpty())
    {
        m_selection->AddAll(group);
        return;
    }
    const bool ctrl = IsModifierHeld(input::Ctrl);
    const bool shift = IsModifierHeld(input::Shift);
    if (ctrl && shift)
        SetSelection(Group::XOR(m_selection, group));
    else if (ctrl)
        m_selection->AddAll(group);
    else if (shift)
        m_selection->RemoveAll(group);
    else
        SetSelection(group);
}

bool Scene::SelectAt(math::Vec2 p)
{
    OnNewSelection(GetSelectionAt(p));
    return !m_selection->IsEmpty();
}

bool Scene::IsSelection(const physics::Polygon& lasso)
{
    GroupPtr group = QLEX_NEW new Group();
    for (const EntityPtr& entity : m_entityList)
    {
        if (entity->IsContainedBy(lasso))
            group->Add(entity);
    }
    if (group->IsEmpty())
        return false;
    OnNewSelection(group);
    return true;
}

void Scene::SelectChain(const EntitySet& entities)
{
    m_selection->Clear();
    for (const EntityPtr& entity : entities)
    {
        if (entity && HasEntity(entity))
            m_selection->Add(entity);
    }
}

// ---------------------------------------------------------------------------------------------------
// Geometry operations

GroupPtr Scene::Widen(const GroupPtr& group) const
{
    GroupPtr result = QLEX_NEW new Group(group->GetEntities());
    const physics::Body* world = physics::Simulation::GetInstancePtr()->GetWorldBody().get();
    for (const EntityPtr& member : group->GetEntities())
    {
        GeomEntity* geomEntity = dynamic_cast<GeomEntity*>(member.get());
        if (!geomEntity)
            continue;
        util::SharedPtr<physics::Body> body = geomEntity->GetBody();
        if (!body || body.get() == world)
            continue;
        for (const EntityPtr& entity : m_entityList)
        {
            GeomEntity* other = dynamic_cast<GeomEntity*>(entity.get());
            if (other && other->GetGeom()->GetBodyBody() == body.get())
                result->Add(entity);
        }
    }
    return result;
}

void Scene::MoveTransform(GroupPtr group, const math::Mat2D& m, bool widen)
{
    if (widen)
        group = Widen(group);
    util::SharedPtr<Transformer> transformer = QLEX_NEW new Transformer(group);
    transformer->Transform(m);
    transformer->End();
}

void Scene::ScaleTransform(const GroupPtr& group, const math::Mat3& transform)
{
    if (IsIdentity(transform))
        return;
    const math::Vec2 s(transform(0, 0), transform(1, 1));
    const float avg = std::sqrt(std::fabs(s.x * s.y));
    // A shape scaled to nothing has no outline to keep; such a transform changes nothing.
    if (!(avg > 0.0f) || !math::IsFinite(avg))
        return;

    DepthTagEntities();

    util::HashMap<EntityPtr, EntityPtr> entityMap;
    util::HashMap<util::SharedPtr<physics::Geom>, util::SharedPtr<physics::Geom>> geomMap;
    std::vector<EntityPtr> members(group->GetEntities().begin(), group->GetEntities().end());
    for (const EntityPtr& member : members)
    {
        util::SharedPtr<GeomEntity> old = util::dynamic_pointer_cast<GeomEntity>(member);
        if (!old)
            continue;
        GeomEntityPtr scaled = old->ScaledClone(s);
        entityMap[old] = scaled;
        geomMap[old->GetGeom()] = scaled->GetGeom();
        scaled->GetGeom()->SetPos(math::TransformCoordinate(transform, old->GetGeom()->GetPosition()));
        util::SharedPtr<physics::Body> body = old->GetBody();
        QLEX_ASSERT(body && "body");
        body->RemoveGeom(old->GetGeom());
        body->AddGeom(scaled->GetGeom());
        for (const GroupPtr& named : m_groups)
        {
            if (named->Remove(old))
                named->Add(scaled);
        }
        AddEntity(scaled);
        RemoveEntity(old);
        if (ChainPtr chain = old->m_chain)
        {
            const int index = chain->IndexOf(old.get());
            if (index >= 0)
                chain->AddEntity(size_t(index), scaled);
            old->m_chain = nullptr;
        }
    }

    const auto newGeomOf = [&](const util::SharedPtr<physics::Geom>& geom)
    {
        const util::SharedPtr<physics::Geom>* replacement = geom ? geomMap.TryGet(geom) : nullptr;
        return replacement ? *replacement : geom;
    };

    std::vector<EntityPtr> entities = m_entityList;
    for (const EntityPtr& entity : entities)
    {
        PenEntity* pen = dynamic_cast<PenEntity*>(entity.get());
        if (!pen)
            continue;
        if (pen->m_geom && geomMap.Contains(pen->m_geom))
        {
            const util::SharedPtr<physics::Geom> newGeom = newGeomOf(pen->m_geom);
            pen->AttachTo(newGeom, MapLocalPoint(*pen->m_geom, *newGeom, transform, pen->m_local));
        }
        if (group->Contains(entity))
            pen->m_size = pen->m_size * avg;
    }

    for (const EntityPtr& entity : entities)
    {
        util::SharedPtr<JointEntity> joint = util::dynamic_pointer_cast<JointEntity>(entity);
        if (!joint || !HasEntity(entity))
            continue;
        const bool member = group->Contains(entity);
        util::SharedPtr<physics::Geom> geoms[2];
        math::Vec2 local[2];
        math::Vec2 world[2];
        bool touched[2];
        bool anyTouched = false;
        for (int i = 0; i < 2; ++i)
        {
            const util::SharedPtr<physics::Geom>& oldGeom = joint->m_geoms[i];
            const bool replaced = oldGeom && geomMap.Contains(oldGeom);
            touched[i] = replaced || member;
            anyTouched = anyTouched || touched[i];
            geoms[i] = newGeomOf(oldGeom);
            local[i] = joint->m_localPos[i];
            world[i] = joint->m_worldPos[i];
            if (touched[i] && oldGeom)
            {
                local[i] = MapLocalPoint(*oldGeom, *geoms[i], transform, joint->m_localPos[i]);
                world[i] = math::TransformCoordinate(geoms[i]->GetPose(), local[i]);
            }
            const bool loose = member != replaced;
            if (loose && geoms[i] && geoms[i]->DistanceWorld(world[i]) >= ANCHOR_TOLERANCE)
                geoms[i] = nullptr;
        }
        for (int i = 0; i < 2; ++i)
        {
            if (geoms[i])
                continue;
            for (const util::SharedPtr<physics::Geom>& candidate : GetGeomsAt(world[i], joint->m_zDepth))
            {
                if (candidate != geoms[1 - i])
                {
                    geoms[i] = candidate;
                    local[i] = math::TransformCoordinate(candidate->GetWorldToGeom(), world[i]);
                    break;
                }
            }
        }
        if (anyTouched)
        {
            if (geoms[0] && geoms[1])
                joint->AttachToLocal(geoms[0], local[0], geoms[1], local[1]);
            else
                RemoveEntity(entity);
        }
        if (member)
        {
            joint->m_size *= avg;
            if (SpringEntity* spring = dynamic_cast<SpringEntity*>(joint.get()))
                spring->m_lengthAttrib = spring->m_lengthAttrib * avg;
        }
    }

    if (!entityMap.empty())
    {
        group->Update(entityMap);
        SortByDepth();
    }
}

void Scene::MirrorLongestAxis(const GroupPtr& group)
{
    const math::OBB2D obb = group->CalcFiniteOBB();
    const float a = std::fabs(obb.halfExtent[0]);
    const float b = std::fabs(obb.halfExtent[1]);
    math::Vec2 axis(1.0f, 0.0f);
    math::Vec2 center;
    if (math::IsFinite(a * b) && a * b != 0.0f && std::fabs(a - b) / ((a + b) / 2.0f) >= SQUARE_TOLERANCE)
    {
        axis = obb.GetLongAxis();
        center = obb.center;
    }
    else
    {
        if (group->Size() == 1)
        {
            if (PlaneEntity* plane = dynamic_cast<PlaneEntity*>(group->GetFirst().get()))
            {
                const math::Vec2 normal =
                    math::TransformNormal(plane->GetGeom()->GetPose(), math::Vec2(1, 0));
                axis = math::Rot90CCW(normal);
            }
        }
        center = group->CalcCenterByWeight();
    }
    const float alpha = (axis.x == 0.0f && axis.y == 0.0f) ? 0.0f : std::atan2(axis.y, axis.x);
    SnapshotPtr snapshot = Snapshot::TakeSnapshot();
    const math::Mat2D toCenter = math::Mat2D::Translation(center);
    const math::Mat2D rotation = toCenter * math::Mat2D::Rotation(-alpha) * math::Mat2D::Translation(-center);
    MoveTransform(group, rotation, false);
    ScaleTransform(group, math::Mat3::Translation2D(center) * math::Mat3::Scale2D(math::Vec2(-1.0f, 1.0f)) *
                              math::Mat3::Translation2D(-center));
    MoveTransform(group, math::Inverted(rotation), false);
    Undoer::GetInstancePtr()->AddUndo(snapshot, "UndoMirror");
}

GroupPtr Scene::CreateClone(const GroupPtr& group, math::Vec2 offset)
{
    DepthTagEntities();
    physics::Simulation* sim = physics::Simulation::GetInstancePtr();

    util::HashMap<util::SharedPtr<physics::Geom>, util::SharedPtr<physics::Geom>> geomMap;
    util::HashMap<util::SharedPtr<physics::Body>, physics::Body::GeomSet> bodyGeoms;
    std::vector<util::SharedPtr<physics::Body>> bodyOrder;
    util::HashMap<ChainPtr, ChainPtr> chainMap;
    std::vector<std::pair<EntityPtr, EntityPtr>> pairs;

    const auto cloneChain = [&](const EntityPtr& old, const EntityPtr& clone)
    {
        ChainPtr oldChain = old->m_chain;
        if (!oldChain)
            return;
        ChainPtr& newChain = chainMap[oldChain];
        if (!newChain)
            newChain = QLEX_NEW new Chain();
        const int index = oldChain->IndexOf(old.get());
        if (index >= 0)
            newChain->AddEntity(size_t(index), clone);
    };

    // The depth order of the originals decides the order of the clones.
    std::vector<EntityPtr> members;
    for (const EntityPtr& entity : m_entityList)
    {
        if (group->Contains(entity))
            members.push_back(entity);
    }
    for (const EntityPtr& entity : group->GetEntities())
    {
        if (!HasEntity(entity))
            members.push_back(entity);
    }

    for (const EntityPtr& member : members)
    {
        util::SharedPtr<GeomEntity> old = util::dynamic_pointer_cast<GeomEntity>(member);
        if (!old)
            continue;
        GeomEntityPtr clone = old->Clone();
        geomMap[old->GetGeom()] = clone->GetGeom();
        if (util::SharedPtr<physics::Body> body = old->GetBody())
        {
            if (!bodyGeoms.Contains(body))
                bodyOrder.push_back(body);
            bodyGeoms[body].insert(clone->GetGeom());
        }
        cloneChain(old, clone);
        pairs.emplace_back(old, clone);
    }

    const util::SharedPtr<physics::Body>& world = sim->GetWorldBody();
    for (const util::SharedPtr<physics::Body>& oldBody : bodyOrder)
    {
        const physics::Body::GeomSet& geoms = bodyGeoms[oldBody];
        if (oldBody == world)
        {
            world->AddGeoms(geoms);
            continue;
        }
        util::SharedPtr<physics::Body> body = QLEX_NEW new physics::Body();
        body->SetGeoms(geoms);
        body->SetVelocity(oldBody->GetVelocity());
        body->SetAngularVelocity(oldBody->GetAngularVelocity());
        sim->AddBody(body);
    }

    const auto mapGeom = [&](const util::SharedPtr<physics::Geom>& geom)
    {
        const util::SharedPtr<physics::Geom>* mapped = geom ? geomMap.TryGet(geom) : nullptr;
        return mapped ? *mapped : geom;
    };

    for (const EntityPtr& member : members)
    {
        if (util::SharedPtr<JointEntity> old = util::dynamic_pointer_cast<JointEntity>(member))
        {
            JointEntityPtr clone = old->Clone();
            const util::SharedPtr<physics::Geom> g0 = mapGeom(old->m_geoms[0]);
            const util::SharedPtr<physics::Geom> g1 = mapGeom(old->m_geoms[1]);
            if (g0 && g1)
                clone->AttachToLocal(g0, old->m_localPos[0], g1, old->m_localPos[1]);
            cloneChain(old, clone);
            pairs.emplace_back(old, clone);
        }
        else if (util::SharedPtr<PenEntity> old = util::dynamic_pointer_cast<PenEntity>(member))
        {
            EntityPtr clone = old->Clone();
            PenEntity* pen = dynamic_cast<PenEntity*>(clone.get());
            QLEX_ASSERT(pen);
            if (old->m_geom)
                pen->AttachTo(mapGeom(old->m_geom), old->m_local);
            pairs.emplace_back(old, clone);
        }
    }

    GroupPtr result = group->ShallowClone();
    result->Clear();
    for (const auto& pair : pairs)
    {
        for (const GroupPtr& named : m_groups)
        {
            if (named->Contains(pair.first))
                named->Add(pair.second);
        }
        pair.second->m_zDepth = pair.first->m_zDepth;
        AddEntity(pair.second);
        result->Add(pair.second);
    }
    SortByDepth();
    if (offset.x != 0.0f || offset.y != 0.0f)
        MoveTransform(result, math::Mat2D::Translation(offset), false);
    return result;
}

math::BoundingBox2 Scene::CalcAABB() const
{
    math::BoundingBox2 solid = math::BoundingBox2::Empty();
    for (const EntityPtr& entity : m_entityList)
    {
        const math::BoundingBox2 box = entity->GetAABB();
        if (IsFiniteBox(box))
            solid.Include(box);
    }
    math::BoundingBox2 all = solid;
    for (const util::SharedPtr<physics::Particle>& particle :
         physics::Simulation::GetInstancePtr()->GetParticles())
        all.Include(particle->GetPosition());
    // Water that has drifted far away would shrink the scene to a dot; it counts only while it stays close.
    if (IsFiniteBox(all) && all.GetArea() <= 2.0f * solid.GetArea())
        return all;
    if (!IsFiniteBox(solid) && IsFiniteBox(all))
        return all;
    return solid;
}

void Scene::MoveToOrigo()
{
    const math::BoundingBox2 box = CalcAABB();
    if (!IsFiniteBox(box) || box.IsEmpty())
        return;
    const math::Vec2 c = box.GetCenter();
    MoveTransform(GetAsGroup(), math::Mat2D::Translation(-c), false);
    for (const util::SharedPtr<physics::Particle>& particle :
         physics::Simulation::GetInstancePtr()->GetParticles())
        particle->SetPosition(particle->GetPosition() - c);
    if (!m_camera->IsTracking())
        m_camera->SetPan(m_camera->GetPan() - c);
}

void Scene::ZoomToScene()
{
    const math::BoundingBox2 box = CalcAABB();
    if (!IsFiniteBox(box) || box.IsEmpty())
    {
        m_camera->Reset();
        return;
    }
    const math::Vec2 size = box.GetSize() * ZOOM_MARGIN;
    const math::Vec2 view = m_camera->GetViewSize();
    float zoom = std::min(view.x / size.x, view.y / size.y);
    // A scene of one point, or a view of no size (the headless program), keeps the present zoom.
    if (!math::IsFinite(zoom) || zoom <= 0.0f)
        zoom = m_camera->GetZoom();
    const math::Mat3 worldToGUI = math::Mat3::Translation2D(view * 0.5f) *
                                  math::Mat3::Scale2D(math::Vec2(zoom, -zoom)) *
                                  math::Mat3::Translation2D(-box.GetCenter());
    m_camera->SetWorldToGUI(worldToGUI);
}

// ---------------------------------------------------------------------------------------------------
// Lifecycle

void Scene::Update(float dt)
{
    util::ScopeProfiler profile("Scene::Update");
    std::vector<EntityPtr> dead;
    {
        util::ScopeProfiler loop("Ent::IsAlive/Update");
        std::vector<EntityPtr> entities = m_entityList;
        for (const EntityPtr& entity : entities)
        {
            try
            {
                if (!entity->IsAlive())
                    dead.push_back(entity);
                else
                    entity->Update(dt);
            }
            catch (std::exception& e)
            {
                CatchException(e, QLEX_SITE);
                Log(logging::Error, util::String("Entity update error: ") + e.what());
                dead.push_back(entity);
            }
        }
    }
    for (const EntityPtr& entity : dead)
        RemoveEntity(entity);
    FlushBodies();
    // The camera follows only what the scene still shows: a followed entity that left takes the group
    // with it once the group is empty.
    if (m_trackedGroup)
        m_trackedGroup->Trim();
    // The camera lets go of a group whose centre is lost (an emptied group, a reset view).
    if (m_trackedGroup && !m_camera->IsTracking())
        SetTrackedGroup(nullptr);
    std::vector<GroupPtr> empty;
    for (const GroupPtr& group : m_groups)
    {
        if (group->IsEmpty())
            empty.push_back(group);
    }
    for (const GroupPtr& group : empty)
        RemoveGroup(group);
}

void Scene::FlushBodies()
{
    util::HashSet<physics::Body*> used;
    for (const EntityPtr& entity : m_entityList)
    {
        GeomEntity* geomEntity = dynamic_cast<GeomEntity*>(entity.get());
        if (geomEntity && geomEntity->GetGeom() && geomEntity->GetGeom()->GetBodyBody())
            used.insert(geomEntity->GetGeom()->GetBodyBody());
    }
    physics::Simulation* sim = physics::Simulation::GetInstancePtr();
    std::vector<util::SharedPtr<physics::Body>> bodies = sim->GetBodies();
    for (const util::SharedPtr<physics::Body>& body : bodies)
    {
        if (used.Contains(body.get()))
            continue;
        const physics::Body::GeomSet& geoms = body->GetGeoms();
        if (geoms.size() == 1 && dynamic_cast<physics::WorldGeom*>(geoms.begin()->get()))
            continue;
        sim->RemoveBody(body);
    }
}

void Scene::ClearScene()
{
    m_onClear.CallAll();
    m_camera->Reset();
    std::vector<EntityPtr> entities = m_entityList;
    for (const EntityPtr& entity : entities)
        RemoveEntity(entity);
    QLEX_ASSERT(m_entityList.empty());
    QLEX_ASSERT(m_entitySet.empty());
    m_groups.clear();
    m_selection->Clear();
    m_groups.insert(m_selection);
    m_trackedGroup = nullptr;
    m_title = "";
    m_author = "";
    m_description = "";
    physics::Simulation::GetInstancePtr()->Clear();
    FileInfo::GetInstancePtr()->ClearStrings();
}

void Scene::NewScene()
{
    ClearScene();
    static const char* const DEFAULTED[] = {
        "Sim.gravity",
        "Sim.gravitySwitch",
        "Sim.airSwitch",
        "Sim.airFrictionLinear",
        "Sim.airFrictionQuadratic",
        "Sim.rotFrictionLinear",
        "Sim.airDensity",
        "Sim.timeFactor",
        "App.borders",
        "App.waterColor",
        "App.fadeColor",
        "App.Background.cloudOpacity",
        "App.Background.drawClouds",
        "App.Background.skyColor",
    };
    for (const char* name : DEFAULTED)
        ResetSettingToDefault(name);
    m_camera->Reset();
}

void Scene::ClearSceneUndoable()
{
    SnapshotPtr snapshot = Snapshot::TakeSnapshot();
    ClearScene();
    Undoer::GetInstancePtr()->AddUndo(snapshot, "UndoClear");
}

void Scene::NewSceneUndoable()
{
    SnapshotPtr snapshot = Snapshot::TakeSnapshot();
    NewScene();
    Undoer::GetInstancePtr()->AddUndo(snapshot, "UndoNewScene");
}

void Scene::ReassertJoints()
{
    std::vector<EntityPtr> entities = m_entityList;
    for (const EntityPtr& entity : entities)
    {
        if (JointEntity* joint = dynamic_cast<JointEntity*>(entity.get()))
            joint->Reassert();
    }
}

void Scene::SetTitle(const util::String& name)
{
    m_title = MakeShortFileName(name);
}

void Scene::OnTitleChange()
{
    util::String text = util::FileSystem::NameAndVersion();
    const util::String title = m_title;
    if (!title.empty())
        text += " - " + title;
    if (m_windowTitleSink)
        m_windowTitleSink(text);
}

void Scene::SetWindowTitleSink(std::function<void(const util::String&)> sink)
{
    m_windowTitleSink = std::move(sink);
    OnTitleChange();
}

bool Scene::IsModifierHeld(input::Modifier modifier) const
{
    return m_pointer.isModifierHeld && m_pointer.isModifierHeld(modifier);
}

math::Vec2 Scene::GetMousePos() const
{
    if (m_pointer.position)
    {
        if (const std::optional<math::Vec2> position = m_pointer.position())
            return m_camera->GUIToWorld(*position);
    }
    return m_camera->GetPan();
}

} // namespace app
