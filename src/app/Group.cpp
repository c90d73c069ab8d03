#include "app/Group.h"

#include "app/EntitySerializer.h"
#include "app/Language.h"
#include "app/Scene.h"
#include "app/entities/BoxEntity.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PenEntity.h"
#include "app/entities/PlaneEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/entities/SpringEntity.h"
#include "physics/Simulation.h"

#include <algorithm>

namespace app
{

const char* const SelectedName = "selected";
const char* const TrackedName = "tracked";

namespace
{
// Weight of a plane in the centre of a group: it counts only where nothing else does.
const float PLANE_WEIGHT = 1e-6f;
const float MAX_WEIGHT = 1e10f;

util::String TypeText(const util::String& type, bool plural)
{
    return Language::GetInstancePtr()->Get("Type_" + type + (plural ? "_plural" : ""));
}

bool IsFinite(const math::BoundingBox2& box)
{
    return math::IsFinite(box.min.x) && math::IsFinite(box.min.y) && math::IsFinite(box.max.x) &&
           math::IsFinite(box.max.y);
}
} // namespace

std::vector<GroupPtr> InOrderOfMaking(const util::HashSet<GroupPtr>& groups)
{
    std::vector<GroupPtr> list(groups.begin(), groups.end());
    // Every object's id counts up as objects are made.
    std::sort(list.begin(), list.end(),
              [](const GroupPtr& a, const GroupPtr& b) { return a->m_id < b->m_id; });
    return list;
}

Group::Group() = default;

Group::Group(const util::String& name) : m_name(name) {}

Group::Group(const EntitySet& entities) : m_entities(entities) {}

Group::Group(const EntityPtr& entity)
{
    QLEX_ASSERT(entity);
    m_entities.insert(entity);
}

void Group::Add(const EntityPtr& entity)
{
    QLEX_ASSERT(entity && "entity");
    m_entities.insert(entity);
    m_onChange.CallAll();
}

bool Group::Remove(const EntityPtr& entity)
{
    if (!m_entities.EraseKey(entity))
        return false;
    m_onChange.CallAll();
    return true;
}

void Group::Clear()
{
    m_entities.clear();
    m_onChange.CallAll();
}

void Group::AddAll(const EntitySet& entities)
{
    for (const EntityPtr& entity : entities)
        m_entities.insert(entity);
    m_onChange.CallAll();
}

void Group::AddAll(const GroupPtr& group)
{
    // A copy: the argument may be this group.
    EntitySet entities = group->m_entities;
    AddAll(entities);
}

void Group::RemoveAll(const EntitySet& entities)
{
    EntitySet copy = entities;
    for (const EntityPtr& entity : copy)
        m_entities.EraseKey(entity);
    m_onChange.CallAll();
}

void Group::RemoveAll(const GroupPtr& group)
{
    EntitySet entities = group->m_entities;
    RemoveAll(entities);
}

void Group::Set(const EntitySet& entities)
{
    EntitySet copy = entities;
    m_entities.clear();
    AddAll(copy);
}

void Group::Set(const GroupPtr& group)
{
    EntitySet entities = group->m_entities;
    Set(entities);
}

void Group::Update(const util::HashMap<EntityPtr, EntityPtr>& replacements)
{
    std::vector<std::pair<EntityPtr, EntityPtr>> swaps;
    for (const EntityPtr& entity : m_entities)
    {
        if (const EntityPtr* replacement = replacements.TryGet(entity))
            swaps.emplace_back(entity, *replacement);
    }
    for (const auto& swap : swaps)
    {
        m_entities.EraseKey(swap.first);
        if (swap.second)
            m_entities.insert(swap.second);
    }
    m_onChange.CallAll();
}

size_t Group::Trim()
{
    Scene* scene = Scene::GetInstancePtr();
    std::vector<EntityPtr> gone;
    for (const EntityPtr& entity : m_entities)
    {
        if (!scene->HasEntity(entity))
            gone.push_back(entity);
    }
    for (const EntityPtr& entity : gone)
        m_entities.EraseKey(entity);
    if (!gone.empty())
        m_onChange.CallAll();
    return gone.size();
}

bool Group::Contains(const EntityPtr& entity) const
{
    return m_entities.find(entity) != m_entities.end();
}

bool Group::ContainsAny(const EntitySet& entities) const
{
    for (const EntityPtr& entity : entities)
    {
        if (Contains(entity))
            return true;
    }
    return false;
}

bool Group::ContainsAll(const EntitySet& entities) const
{
    for (const EntityPtr& entity : entities)
    {
        if (!Contains(entity))
            return false;
    }
    return true;
}

EntityPtr Group::GetFirst() const
{
    return m_entities.empty() ? EntityPtr() : *m_entities.begin();
}

std::vector<unsigned long> Group::GetEnityIDs() const
{
    std::vector<unsigned long> ids;
    ids.reserve(m_entities.size());
    for (const EntityPtr& entity : m_entities)
        ids.push_back(entity->GetID());
    // The set's own order follows the members' addresses; files and snapshots must not vary with them.
    std::sort(ids.begin(), ids.end());
    return ids;
}

template <class T> bool Group::AreAll() const
{
    for (const EntityPtr& entity : m_entities)
    {
        if (!dynamic_cast<T*>(entity.get()))
            return false;
    }
    return true;
}

template <class T> util::HashSet<util::SharedPtr<T>> Group::GetAllAsSet() const
{
    util::HashSet<util::SharedPtr<T>> result;
    for (const EntityPtr& entity : m_entities)
    {
        if (T* typed = dynamic_cast<T*>(entity.get()))
            result.insert(util::SharedPtr<T>(typed));
    }
    return result;
}

#define QLEX_GROUP_TYPE(T)                                                                                   \
    template bool Group::AreAll<T>() const;                                                                  \
    template util::HashSet<util::SharedPtr<T>> Group::GetAllAsSet<T>() const;
QLEX_GROUP_TYPE(SpringEntity)
QLEX_GROUP_TYPE(PlaneEntity)
QLEX_GROUP_TYPE(PolyEntity)
QLEX_GROUP_TYPE(BoxEntity)
QLEX_GROUP_TYPE(CircleEntity)
QLEX_GROUP_TYPE(PenEntity)
QLEX_GROUP_TYPE(FixJointEntity)
QLEX_GROUP_TYPE(HingeEntity)
QLEX_GROUP_TYPE(JointEntity)
QLEX_GROUP_TYPE(GeomEntity)
QLEX_GROUP_TYPE(FiniteGeomEntity)
#undef QLEX_GROUP_TYPE

GroupPtr Group::ShallowClone() const
{
    GroupPtr clone = QLEX_NEW new Group(m_entities);
    clone->m_name = m_name;
    return clone;
}

GroupPtr Group::XOR(const GroupPtr& a, const GroupPtr& b)
{
    GroupPtr result = QLEX_NEW new Group();
    for (const EntityPtr& entity : a->m_entities)
    {
        if (!b->Contains(entity))
            result->m_entities.insert(entity);
    }
    for (const EntityPtr& entity : b->m_entities)
    {
        if (!a->Contains(entity))
            result->m_entities.insert(entity);
    }
    return result;
}

util::String Group::GetDescriptiveName() const
{
    if (m_entities.empty())
        return Language::GetInstancePtr()->Get("EmptyGroup");
    util::String type = "Entity";
    if (AreAll<BoxEntity>())
        type = "Box";
    else if (AreAll<CircleEntity>())
        type = "Circle";
    else if (AreAll<PolyEntity>())
        type = "Polygon";
    else if (AreAll<PlaneEntity>())
        type = "Plane";
    else if (AreAll<GeomEntity>())
        type = "Geom";
    else if (AreAll<FixJointEntity>())
        type = "FixJoint";
    else if (AreAll<HingeEntity>())
        type = "Hinge";
    else if (AreAll<SpringEntity>())
        type = "Spring";
    else if (AreAll<PenEntity>())
        type = "Pen";
    if (m_entities.size() == 1)
        return TypeText(type, false);
    return std::to_string(m_entities.size()) + " " + TypeText(type, true);
}

math::BoundingBox2 Group::CalcFiniteAABB() const
{
    math::BoundingBox2 box = math::BoundingBox2::Empty();
    for (const EntityPtr& entity : m_entities)
    {
        math::BoundingBox2 entityBox = entity->GetAABB();
        if (IsFinite(entityBox))
            box.Include(entityBox);
    }
    return box;
}

math::OBB2D Group::CalcFiniteOBB() const
{
    std::vector<math::Vec2> points;
    for (const EntityPtr& entity : m_entities)
        entity->GetBoundPoints(points);
    points.erase(std::remove_if(points.begin(), points.end(),
                                [](const math::Vec2& p)
                                { return !math::IsFinite(p.x) || !math::IsFinite(p.y); }),
                 points.end());
    if (points.empty())
        return math::OBB2D::Empty();
    if (points.size() == 1)
        return math::OBB2D::FromCenterRad(points.front(), 0.0f);
    return math::OBB2D::Build(points);
}

math::Vec2 Group::CalcCenterByWeight() const
{
    const math::Vec2 mouse = Scene::GetInstancePtr()->GetMousePos();
    double total = 0.0;
    math::TVector2<double> sum(0.0, 0.0);
    for (const EntityPtr& entity : m_entities)
    {
        GeomEntity* geomEntity = dynamic_cast<GeomEntity*>(entity.get());
        if (!geomEntity || !geomEntity->GetGeom())
            continue;
        double weight = PLANE_WEIGHT;
        math::Vec2 at = mouse;
        if (dynamic_cast<FiniteGeomEntity*>(geomEntity))
        {
            weight = std::clamp(geomEntity->GetGeom()->Area(), 0.0f, MAX_WEIGHT);
            at = geomEntity->GetGeom()->GetPosition();
        }
        total += weight;
        sum.x += weight * at.x;
        sum.y += weight * at.y;
    }
    if (total > 0.0 && std::isfinite(total))
        return math::Vec2(float(sum.x / total), float(sum.y / total));
    const math::BoundingBox2 box = CalcFiniteAABB();
    const math::Vec2 size = box.GetSize();
    const float extent = size.x * size.x + size.y * size.y;
    if (math::IsFinite(extent) && extent > 0.0f)
        return box.GetCenter();
    return mouse;
}

std::optional<math::Vec2> Group::CalcScaleCenter() const
{
    if (m_entities.size() == 1 &&
        (AreAll<HingeEntity>() || AreAll<FixJointEntity>() || AreAll<PenEntity>() || AreAll<CircleEntity>()))
        return CalcCenterByWeight();

    physics::Body::GeomSet geoms;
    for (const auto& geomEntity : GetAllAsSet<GeomEntity>())
        geoms.insert(geomEntity->GetGeom());

    std::vector<math::Vec2> lists[4]; // A, B, C, D
    for (const EntityPtr& entity : Scene::GetInstancePtr()->GetEntities())
    {
        JointEntity* joint = dynamic_cast<JointEntity*>(entity.get());
        if (!joint)
            continue;
        const bool in0 = joint->m_geoms[0] && geoms.Contains(joint->m_geoms[0]);
        const bool in1 = joint->m_geoms[1] && geoms.Contains(joint->m_geoms[1]);
        if (!in0 && !in1)
            continue;
        const bool isHinge = dynamic_cast<HingeEntity*>(joint) != nullptr;
        if (in0 && in1)
        {
            const math::Vec2 mid = (joint->m_worldPos[0] + joint->m_worldPos[1]) * 0.5f;
            lists[0].push_back(mid);
            if (isHinge)
                lists[2].push_back(mid);
            continue;
        }
        int end = in0 ? 0 : 1;
        if (Contains(entity))
            end = 1 - end;
        const math::Vec2 point = joint->m_worldPos[end];
        lists[0].push_back(point);
        lists[1].push_back(point);
        if (isHinge)
        {
            lists[2].push_back(point);
            lists[3].push_back(point);
        }
    }
    for (int list : {1, 0, 3, 2})
    {
        if (lists[list].size() == 1)
            return lists[list].front();
    }
    return std::nullopt;
}

math::Vec2 Group::CalcRotationCenter() const
{
    if (std::optional<math::Vec2> center = CalcScaleCenter())
        return *center;
    return CalcCenterByWeight();
}

bool Group::GlueToBackground()
{
    physics::Simulation* sim = physics::Simulation::GetInstancePtr();
    const util::SharedPtr<physics::Body>& world = sim->GetWorldBody();
    bool changed = false;
    for (const auto& geomEntity : GetAllAsSet<GeomEntity>())
    {
        util::SharedPtr<physics::Body> body = geomEntity->GetBody();
        if (!body || body == world)
            continue;
        body->RemoveGeom(geomEntity->GetGeom());
        if (body->GetGeoms().empty())
            sim->RemoveBody(body);
        world->AddGeom(geomEntity->GetGeom());
        geomEntity->GetBody();
        changed = true;
    }
    if (changed)
        Scene::GetInstancePtr()->ReassertJoints();
    return changed;
}

void Group::Mirror()
{
    const math::Vec2 c = CalcRotationCenter();
    const math::Mat3 m = math::Mat3::Translation2D(c) * math::Mat3::Scale2D(math::Vec2(-1.0f, 1.0f)) *
                         math::Mat3::Translation2D(-c);
    Scene::GetInstancePtr()->ScaleTransform(this, m);
}

void Group::SerializeTo(EntitySerializer& record) const
{
    record.Set("name", m_name);
}

void Group::Deserialize(const EntitySerializer& record)
{
    if (record.Has("name"))
        m_name = record.Get<util::String>("name");
}

} // namespace app
