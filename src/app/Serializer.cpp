#include "app/Serializer.h"

#include "app/Chain.h"
#include "app/FileInfo.h"
#include "app/Scene.h"
#include "app/Settings.h"
#include "app/entities/BoxEntity.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PenEntity.h"
#include "app/entities/PlaneEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/entities/SpringEntity.h"
#include "logging/Log.h"
#include "physics/Box.h"
#include "physics/Circle.h"
#include "physics/Particle.h"
#include "physics/Plane.h"
#include "physics/Polygon.h"
#include "physics/Simulation.h"
#include "script/Attributes.h"
#include "script/Expressions.h"
#include "script/Parser.h"
#include "script/Variable.h"
#include "util/FileSystem.h"
#include "util/Profiler.h"
#include "util/StringUtil.h"

#include <limits>

namespace app
{

const char* const Serializer::SCENE_HEADER = "// Qlex scene created by ";
const char* const Serializer::QLEXLET_HEADER = "// Qlexlet created by ";

namespace
{
const size_t TABLE_CAPACITY = 3;
// Joints and pens made by a file start this big; the file's "size" follows.
const float READ_JOINT_SIZE = 0.1f;
const float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
const char* const BAD_HELPER_ARGUMENT =
    "Bad argument to scene creator function, must be an inline function with zero arguments (i.e.: {...} )";

void AddSetting(std::vector<script::VariablePtr>& list, const char* name)
{
    script::VariablePtr var = FindSetting(name);
    if (!var)
        return;
    // A setting over an outside value (the camera's pan) follows that value once a frame; within a frame
    // its object may still show the one before.
    if (auto* polled = dynamic_cast<script::PokeMeOncePerFrame*>(var.get()))
        polled->Poke();
    list.push_back(var);
}

bool IsBlack(const script::VariablePtr& var)
{
    if (!var)
        return true;
    try
    {
        const math::Vec3 c = script::ObjectToValue<math::Vec3>(script::ExpandObject(var->GetObject()));
        return c.x == 0.0f && c.y == 0.0f && c.z == 0.0f;
    }
    catch (std::exception&)
    {
        return false;
    }
}

util::String Header(const char* kind, const script::CodeBlockPtr& block)
{
    return kind + util::FileSystem::NameAndVersion() + "\n\n" + block->ToCode();
}

script::ObjectPtr Void()
{
    return QLEX_NEW new script::Void();
}

// A list of points that a record holds as a list of lists of two numbers.
std::vector<math::Vec2> GetPoints(const EntitySerializer& record, const char* key)
{
    return record.Get<std::vector<math::Vec2>>(key);
}

// Records are written and read in stages: joints and pens name the geometry they hang on, so geometry
// comes first.
enum class Stage
{
    Geometry,
    Attached,
    Rest,
};
const int STAGE_COUNT = 3;
// What the messages of the old format call the records of each stage.
const char* const STAGE_NAMES[STAGE_COUNT] = {"geometry", "non-geometry", "water or group"};

template <class T> bool Is(const Entity& entity)
{
    return dynamic_cast<const T*>(&entity) != nullptr;
}

// Every kind of record: the command that reads it, its "type" in the old format (widgets have none), its
// stage, and for kinds of entity the test that an entity is of the kind.
struct RecordKind
{
    const char* command;
    const char* oldType;
    script::ObjectPtr (Serializer::*add)(const EntitySerializer&);
    Stage stage;
    bool (*holds)(const Entity&);
};

const RecordKind RECORD_KINDS[] = {
    {"addPlane", "plane", &Serializer::AddPlane, Stage::Geometry, &Is<PlaneEntity>},
    {"addCircle", "circle", &Serializer::AddCircle, Stage::Geometry, &Is<CircleEntity>},
    {"addPolygon", "polygon", &Serializer::AddPolygon, Stage::Geometry, &Is<PolyEntity>},
    {"addBox", "box", &Serializer::AddBox, Stage::Geometry, &Is<BoxEntity>},
    {"addFixjoint", "fixjoint", &Serializer::AddFixjoint, Stage::Attached, &Is<FixJointEntity>},
    {"addHinge", "hinge", &Serializer::AddHinge, Stage::Attached, &Is<HingeEntity>},
    {"addSpring", "spring", &Serializer::AddSpring, Stage::Attached, &Is<SpringEntity>},
    {"addPen", "pen", &Serializer::AddPen, Stage::Attached, &Is<PenEntity>},
    {"addWater", "water", &Serializer::AddWater, Stage::Rest, nullptr},
    {"addGroup", "group", &Serializer::AddGroup, Stage::Rest, nullptr},
    {"addWidget", nullptr, &Serializer::AddWidget, Stage::Rest, nullptr},
};

const RecordKind* KindOf(const Entity& entity)
{
    for (const RecordKind& kind : RECORD_KINDS)
        if (kind.holds && kind.holds(entity))
            return &kind;
    return nullptr;
}

const RecordKind* KindOfOldType(const util::String& type)
{
    for (const RecordKind& kind : RECORD_KINDS)
        if (kind.oldType && type == kind.oldType)
            return &kind;
    return nullptr;
}
} // namespace

std::vector<script::VariablePtr> GetMetaVarList(bool all)
{
    FileInfo* info = FileInfo::GetInstancePtr();
    Scene* scene = Scene::GetInstancePtr();
    if (util::String(info->m_title).empty())
        info->m_title = util::String(scene->m_title);
    if (util::String(info->m_author).empty())
        info->m_author = util::String(scene->m_author);
    if (util::String(info->m_description).empty())
        info->m_description = util::String(scene->m_description);

    std::vector<script::VariablePtr> list;
    if (all || !util::String(info->m_title).empty())
        list.push_back(info->m_title.GetAttrib());
    if (all || !util::String(info->m_author).empty())
        list.push_back(info->m_author.GetAttrib());
    if (all || !util::String(info->m_description).empty())
        list.push_back(info->m_description.GetAttrib());
    info->m_version = FileInfo::VERSION_LATEST;
    list.push_back(info->m_version.GetAttrib());
    return list;
}

Serializer::Serializer()
    : m_geoms(TABLE_CAPACITY), m_chains(TABLE_CAPACITY), m_entities(TABLE_CAPACITY), m_bodies(TABLE_CAPACITY),
      m_planes(TABLE_CAPACITY), m_addedGroup(QLEX_NEW new Group())
{
    if (!FindSetting("FileInfo"))
        FileInfo::GetInstancePtr()->AddToRoot();

    Scene* scene = Scene::GetInstancePtr();
    for (const RecordKind& kind : RECORD_KINDS)
    {
        const Member member = kind.add;
        scene->AddCmd1(kind.command,
                       [this, member](script::ObjectPtr argument) { return Helper(member, argument); });
    }

    ClearTables();
}

Serializer::~Serializer() = default;

// ---------------------------------------------------------------------------------------------------
// Writing

std::vector<script::VariablePtr> Serializer::GetVarList(bool all, bool withCamera)
{
    std::vector<script::VariablePtr> list = GetMetaVarList(all);
    for (const char* name : {"Sim.gravity", "Sim.gravitySwitch", "Sim.airSwitch", "Sim.airFrictionLinear",
                             "Sim.airFrictionQuadratic", "Sim.rotFrictionLinear", "Sim.airDensity",
                             "Sim.timeFactor", "App.borders", "App.waterColor"})
        AddSetting(list, name);
    if (withCamera)
    {
        AddSetting(list, "Scene.Camera.pan");
        AddSetting(list, "Scene.Camera.zoom");
    }
    for (const char* name : {"App.Background.cloudOpacity", "App.Background.drawClouds",
                             "App.Background.skyColor", "App.fadeColor"})
        AddSetting(list, name);
    if (all || !IsBlack(FindSetting("App.fadeColor")))
    {
        for (const char* name : {"App.fadeScale", "App.fadeTranslate", "App.fadeRotate"})
            AddSetting(list, name);
    }
    return list;
}

template <class Container>
void SerializeEntities(const script::CodeBlockPtr& block, const Container& entities)
{
    Scene::GetInstancePtr()->DepthTagEntities();
    physics::Body::GeomSet geoms;
    for (const EntityPtr& entity : entities)
    {
        if (GeomEntity* geomEntity = dynamic_cast<GeomEntity*>(entity.get()))
            geoms.insert(geomEntity->GetGeom());
    }
    geoms.insert(physics::Simulation::GetInstancePtr()->GetWorldGeom());

    for (const Stage stage : {Stage::Geometry, Stage::Attached})
    {
        for (const EntityPtr& entity : entities)
        {
            const RecordKind* kind = KindOf(*entity);
            if (kind && kind->stage == stage)
                SerializeEntity(block, kind->command, entity, geoms);
            else if (!kind && stage == Stage::Attached && !Is<GeomEntity>(*entity))
                Log(logging::Warning, "Bad Entity");
        }
    }
}

template void SerializeEntities(const script::CodeBlockPtr&, const EntitySet&);
template void SerializeEntities(const script::CodeBlockPtr&, const std::vector<EntityPtr>&);

void SerializeEntity(const script::CodeBlockPtr& block, const util::String& command, const EntityPtr& entity,
                     const physics::Body::GeomSet& geoms)
{
    EntitySerializer record;
    if (JointEntity* joint = dynamic_cast<JointEntity*>(entity.get()))
    {
        for (int i = 0; i < 2; ++i)
        {
            const util::String end = util::ToString(i);
            const util::SharedPtr<physics::Geom>& geom = joint->m_geoms[i];
            const bool known = geom && geoms.Contains(geom);
            record.Set("geom" + end, known ? int(geom->GetId()) : -1);
            if (known)
                record.Set("geom" + end + "pos", joint->m_localPos[i]);
            else
                record.Set("world" + end + "pos", joint->m_worldPos[i]);
        }
    }
    else if (PenEntity* pen = dynamic_cast<PenEntity*>(entity.get()))
    {
        const bool known = pen->m_geom && geoms.Contains(pen->m_geom);
        record.Set("geom", known ? int(pen->m_geom->GetId()) : -1);
        if (known)
            record.Set("relPoint", pen->m_local);
        else
            record.Set("pos", pen->GetPos());
    }
    entity->SerializeTo(record);
    block->Add(record.ToFunctionCall("Scene." + command));
}

script::ExpressionPtr Serializer::SerializeGroup(const GroupPtr& group)
{
    EntitySerializer record;
    group->SerializeTo(record);
    record.Set("entityIDs", group->GetEnityIDs());
    return record.ToFunctionCall("Scene.addGroup");
}

util::String Serializer::SerializeScene()
{
    util::ScopeProfiler profile("Serializer::SerializeScene");
    script::CodeBlockPtr block = QLEX_NEW new script::CodeBlock();
    for (const script::VariablePtr& var : GetVarList(false, true))
    {
        if (script::ExpressionPtr expression = var->ToExpression())
            block->Add(expression);
    }
    Scene* scene = Scene::GetInstancePtr();
    SerializeEntities(block, scene->GetEntities());

    const std::vector<util::SharedPtr<physics::Particle>>& particles =
        physics::Simulation::GetInstancePtr()->GetParticles();
    if (!particles.empty())
    {
        std::vector<math::Vec2> positions;
        positions.reserve(particles.size());
        for (const util::SharedPtr<physics::Particle>& particle : particles)
            positions.push_back(particle->GetPosition());
        EntitySerializer water;
        water.Set("vecs", positions);
        block->Add(water.ToFunctionCall("Scene.addWater"));
    }
    for (const GroupPtr& group : InOrderOfMaking(scene->GetGroups()))
        block->Add(SerializeGroup(group));
    return Header(SCENE_HEADER, block);
}

util::String Serializer::SerializeQlexlet(const GroupPtr& group)
{
    script::CodeBlockPtr block = QLEX_NEW new script::CodeBlock();
    for (const script::VariablePtr& var : GetMetaVarList(false))
    {
        if (script::ExpressionPtr expression = var->ToExpression())
            block->Add(expression);
    }
    // The group's own order is that of a hash set; the scene's list keeps the drawing order.
    std::vector<EntityPtr> entities;
    for (const EntityPtr& entity : Scene::GetInstancePtr()->GetEntities())
    {
        if (group->Contains(entity))
            entities.push_back(entity);
    }
    for (const EntityPtr& entity : group->GetEntities())
    {
        if (!Scene::GetInstancePtr()->HasEntity(entity))
            entities.push_back(entity);
    }
    SerializeEntities(block, entities);
    return Header(QLEXLET_HEADER, block);
}

void Serializer::RegisterEntity(const EntityPtr& entity)
{
    m_entities[entity->GetID()] = entity;
    if (GeomEntity* geomEntity = dynamic_cast<GeomEntity*>(entity.get()))
        m_geoms[int(geomEntity->GetGeom()->GetId())] = geomEntity->GetGeom();
}

// ---------------------------------------------------------------------------------------------------
// Reading

void Serializer::ClearTables()
{
    m_geoms.clear();
    m_chains.clear();
    m_entities.clear();
    m_bodies.clear();
    m_planes.clear();
    physics::Simulation* sim = physics::Simulation::GetInstancePtr();
    m_geoms[int(sim->GetWorldGeom()->GetId())] = sim->GetWorldGeom();
    m_bodies[sim->GetWorldBody()->GetId()] = sim->GetWorldBody();
}

GroupPtr Serializer::Deserialize(const util::String& text)
{
    util::ScopeProfiler profile("Serializer::Deserialize");
    m_addedGroup = QLEX_NEW new Group();
    // Ids name objects only within one text: what an earlier read entered must not answer for this one.
    // Commands typed between reads use the tables as the last read left them.
    ClearTables();
    if (util::starts_with(text, "version = ") || util::starts_with(text, "{"))
    {
        Log(logging::Info, "Old (pre beta 4) file type detected");
        DeserializeOld(text);
    }
    else
    {
        script::Parser::GetInstancePtr()->Execute(text);
    }
    Scene::GetInstancePtr()->SortByDepth();
    return m_addedGroup;
}

script::ObjectPtr Serializer::Helper(Member member, const script::ObjectPtr& argument)
{
    util::SharedPtr<script::Function> function = util::dynamic_pointer_cast<script::Function>(argument);
    if (!function || function->GetArgCount() != 0)
        QLEX_THROW(BadCoderException(BAD_HELPER_ARGUMENT));
    function->Call(script::ObjectList());
    EntitySerializer record(function->GetLastCallClosure());
    return (this->*member)(record);
}

void Serializer::AddGeomEntity(const EntitySerializer& record, const util::SharedPtr<GeomEntity>& entity,
                               bool onWorldByDefault)
{
    if (record.Has("collide") && !record.Get<bool>("collide"))
        entity->m_collideSet = 0;
    if (record.Has("geomID"))
        m_geoms[record.Get<int>("geomID")] = entity->GetGeom();
    else if (record.Has("id"))
        m_geoms[record.Get<int>("id")] = entity->GetGeom();
    entity->Deserialize(record);
    if (record.Has("body"))
    {
        const unsigned long id = record.Get<unsigned long>("body");
        util::SharedPtr<physics::Body>& body = m_bodies[id];
        if (!body)
            body = QLEX_NEW new physics::Body();
        body->AddGeom(entity->GetGeom());
    }
    else if (onWorldByDefault)
    {
        physics::Simulation::GetInstancePtr()->GetWorldBody()->AddGeom(entity->GetGeom());
    }
    try
    {
        AddEntityPostSerialize(record, entity);
    }
    catch (...)
    {
        // A record that fails leaves nothing behind: on the world body its geom would be an invisible wall.
        const util::SharedPtr<physics::Geom>& geom = entity->GetGeom();
        if (util::SharedPtr<physics::Body> body = geom->GetBodyBody())
            body->RemoveGeom(geom);
        throw;
    }
}

void Serializer::CheckChain(const EntitySerializer& record, const EntityPtr& entity)
{
    if (!record.Has("chain") || !record.Has("chainNr"))
        return;
    const unsigned long id = record.Get<unsigned long>("chain");
    const int index = record.Get<int>("chainNr");
    QLEX_DATA_ASSERT(index >= 0);
    util::SharedPtr<Chain>& chain = m_chains[id];
    if (!chain)
        chain = QLEX_NEW new Chain();
    chain->AddEntity(size_t(index), entity);
}

void Serializer::AddEntityPostSerialize(const EntitySerializer& record, const EntityPtr& entity)
{
    CheckChain(record, entity);
    if (record.Has("entityID"))
        m_entities[record.Get<unsigned long>("entityID")] = entity;
    Scene* scene = Scene::GetInstancePtr();
    scene->AddEntity(entity);
    m_addedGroup->Add(entity);
}

script::ObjectPtr Serializer::AddBox(const EntitySerializer& record)
{
    util::SharedPtr<BoxEntity> entity =
        QLEX_NEW new BoxEntity(QLEX_NEW new physics::Box(math::Vec2(1.0f, 1.0f), math::Vec2(0.0f, 0.0f)));
    AddGeomEntity(record, entity, false);
    return entity;
}

script::ObjectPtr Serializer::AddCircle(const EntitySerializer& record)
{
    // A circle's radius is fixed at its making.
    const float radius = record.Has("radius") ? record.Get<float>("radius") : 1.0f;
    if (!(radius > 0.0f && math::IsFinite(radius)))
        QLEX_THROW(BadDataException("Circle radius must be positive: " + util::ToString(radius)));
    util::SharedPtr<CircleEntity> entity =
        QLEX_NEW new CircleEntity(QLEX_NEW new physics::Circle(math::Vec2(0.0f, 0.0f), radius));
    AddGeomEntity(record, entity, false);
    return entity;
}

script::ObjectPtr Serializer::AddPolygon(const EntitySerializer& record)
{
    util::SharedPtr<PolyEntity> entity =
        QLEX_NEW new PolyEntity(QLEX_NEW new physics::Polygon(GetPoints(record, "vecs")));
    AddGeomEntity(record, entity, false);
    return entity;
}

script::ObjectPtr Serializer::AddPlane(const EntitySerializer& record)
{
    const math::Vec2 normal =
        record.Has("normal") ? record.Get<math::Vec2>("normal") : math::Vec2(1.0f, 0.0f);
    const float dist = record.Has("dist") ? record.Get<float>("dist") : 0.0f;
    // Without a direction there is no line, and the plane's pose would come out of nothing.
    if (!(normal.Length() > 0.0f) || !math::IsFinite(normal.Length()) || !math::IsFinite(dist))
        QLEX_THROW(BadDataException("Plane needs a normal of some length and a finite distance: [" +
                                    util::ToString(normal.x) + ", " + util::ToString(normal.y) + "], " +
                                    util::ToString(dist)));
    util::SharedPtr<physics::Plane> plane = QLEX_NEW new physics::Plane(math::Plane2D(normal, dist));
    const math::Mat2D base = plane->GetPose();
    plane->SetWorldPose(math::Mat2D::Identity());
    util::SharedPtr<PlaneEntity> entity = QLEX_NEW new PlaneEntity(plane);
    AddGeomEntity(record, entity, true);
    plane->SetWorldPose(plane->GetPose() * base);
    if (physics::Body* body = plane->GetBodyBody())
        body->OnGeomChange();
    m_planes[plane] = base;
    return entity;
}

bool Serializer::AttachJoint(const EntitySerializer& record, const util::SharedPtr<JointEntity>& joint)
{
    Scene* scene = Scene::GetInstancePtr();
    util::SharedPtr<physics::Geom> geoms[2];
    math::Vec2 anchors[2] = {math::Vec2(NOT_A_NUMBER, NOT_A_NUMBER), math::Vec2(NOT_A_NUMBER, NOT_A_NUMBER)};
    // Anchors read as local points are relative to the pose that the file gave the geom.
    bool fromFileLocal[2] = {false, false};
    for (int i = 0; i < 2; ++i)
    {
        const util::String end = util::ToString(i);
        if (record.Has("geom" + end))
        {
            const int id = record.Get<int>("geom" + end);
            if (const util::SharedPtr<physics::Geom>* geom = m_geoms.TryGet(id))
                geoms[i] = *geom;
            else
                Log(logging::Error, "Couldn't find geom with ID " + util::ToString(id));
        }
        if (!geoms[i])
        {
            math::Vec2 point;
            if (record.Has("world" + end + "pos"))
                point = record.Get<math::Vec2>("world" + end + "pos");
            else if (record.Has("pos"))
                point = record.Get<math::Vec2>("pos");
            else
            {
                Log(logging::Warning, "Joint connected to unknown geometry");
                return false;
            }
            for (const util::SharedPtr<physics::Geom>& candidate : scene->GetGeomsAt(point, math::INF))
            {
                if (candidate != geoms[1 - i])
                {
                    geoms[i] = candidate;
                    break;
                }
            }
            if (!geoms[i])
            {
                Log(logging::Warning, "Failed to attach joint to any geometry");
                return false;
            }
            anchors[i] = math::TransformCoordinate(geoms[i]->GetWorldToGeom(), point);
        }
        if (!math::IsFinite(anchors[i].x) || !math::IsFinite(anchors[i].y))
        {
            if (record.Has("geom" + end + "pos"))
            {
                anchors[i] = record.Get<math::Vec2>("geom" + end + "pos");
                fromFileLocal[i] = true;
            }
            else if (record.Has("pos"))
                anchors[i] =
                    math::TransformCoordinate(geoms[i]->GetWorldToGeom(), record.Get<math::Vec2>("pos"));
            else if (record.Has("world" + end + "pos"))
                anchors[i] = math::TransformCoordinate(geoms[i]->GetWorldToGeom(),
                                                       record.Get<math::Vec2>("world" + end + "pos"));
        }
    }
    // A plane read with "normal" and "dist" has its line folded into its pose: a local anchor of the file
    // goes through the inverse of that fold. Anchors found from world points are in the final frame already.
    for (int i = 0; i < 2; ++i)
    {
        const math::Mat2D* base = m_planes.TryGet(geoms[i]);
        if (base && fromFileLocal[i])
            anchors[i] = math::InvTransformCoordinate(*base, anchors[i]);
    }
    const auto finite = [](const math::Vec2& v) { return math::IsFinite(v.x) && math::IsFinite(v.y); };
    for (int i = 0; i < 2; ++i)
    {
        if (!finite(anchors[i]) && finite(anchors[1 - i]))
        {
            const math::Vec2 world = math::TransformCoordinate(geoms[1 - i]->GetPose(), anchors[1 - i]);
            anchors[i] = math::TransformCoordinate(geoms[i]->GetWorldToGeom(), world);
        }
    }
    if (!finite(anchors[0]) || !finite(anchors[1]))
    {
        Log(logging::Warning, "Bad joint");
        return false;
    }
    joint->AttachToLocal(geoms[0], anchors[0], geoms[1], anchors[1]);
    try
    {
        joint->Deserialize(record);
        AddEntityPostSerialize(record, joint);
    }
    catch (...)
    {
        // The joint already acts in the simulation; a record that fails must not leave it there unseen.
        joint->RemoveFromSimulation();
        throw;
    }
    return true;
}

script::ObjectPtr Serializer::AddFixjoint(const EntitySerializer& record)
{
    util::SharedPtr<FixJointEntity> joint = QLEX_NEW new FixJointEntity(READ_JOINT_SIZE);
    return AttachJoint(record, joint) ? script::ObjectPtr(joint) : Void();
}

script::ObjectPtr Serializer::AddHinge(const EntitySerializer& record)
{
    util::SharedPtr<HingeEntity> joint = QLEX_NEW new HingeEntity(READ_JOINT_SIZE);
    return AttachJoint(record, joint) ? script::ObjectPtr(joint) : Void();
}

script::ObjectPtr Serializer::AddSpring(const EntitySerializer& record)
{
    util::SharedPtr<SpringEntity> joint = QLEX_NEW new SpringEntity(READ_JOINT_SIZE);
    return AttachJoint(record, joint) ? script::ObjectPtr(joint) : Void();
}

script::ObjectPtr Serializer::AddPen(const EntitySerializer& record)
{
    util::SharedPtr<PenEntity> pen = QLEX_NEW new PenEntity(READ_JOINT_SIZE);
    const util::SharedPtr<physics::Geom>* geom =
        record.Has("geom") ? m_geoms.TryGet(record.Get<int>("geom")) : nullptr;
    if (geom)
    {
        math::Vec2 local;
        if (record.Has("relPoint"))
        {
            local = record.Get<math::Vec2>("relPoint");
            // As for joints: a local point of the file is relative to the pose that the file gave a plane.
            if (const math::Mat2D* base = m_planes.TryGet(*geom))
                local = math::InvTransformCoordinate(*base, local);
        }
        else
            local = math::TransformCoordinate((*geom)->GetWorldToGeom(), record.Get<math::Vec2>("pos"));
        pen->AttachTo(*geom, local);
    }
    else
    {
        pen->AttachAt(record.Get<math::Vec2>("pos"));
    }
    pen->Deserialize(record);
    AddEntityPostSerialize(record, pen);
    return pen;
}

script::ObjectPtr Serializer::AddWater(const EntitySerializer& record)
{
    physics::Simulation* sim = physics::Simulation::GetInstancePtr();
    for (const math::Vec2& point : GetPoints(record, "vecs"))
        sim->AddParticle(QLEX_NEW new physics::Particle(point, math::Vec2(0.0f, 0.0f)));
    return Void();
}

script::ObjectPtr Serializer::AddGroup(const EntitySerializer& record)
{
    GroupPtr group = QLEX_NEW new Group();
    for (unsigned long id : record.Get<std::vector<unsigned long>>("entityIDs"))
    {
        if (const EntityPtr* entity = m_entities.TryGet(id))
            group->Add(*entity);
    }
    group->Deserialize(record);
    Scene::GetInstancePtr()->AddGroup(group);
    return Void();
}

script::ObjectPtr Serializer::AddWidget(const EntitySerializer& record)
{
    const util::String widgetID = record.Get<util::String>("widgetID");
    Scene* scene = Scene::GetInstancePtr();
    GroupPtr group;
    util::String groupID;
    if (record.Has("groupID"))
    {
        groupID = record.Get<util::String>("groupID");
        group = scene->GetGroupByName(groupID);
    }
    if (record.Has("entityIDs"))
    {
        EntitySet entities;
        for (unsigned long id : record.Get<std::vector<unsigned long>>("entityIDs"))
        {
            if (const EntityPtr* entity = m_entities.TryGet(id))
                entities.insert(*entity);
        }
        if (group)
            group->Set(entities);
        else
            group = QLEX_NEW new Group(entities);
    }
    if (!groupID.empty())
    {
        QLEX_DATA_ASSERT(group);
        group->SetName(groupID);
    }
    // Widgets live in the application's interface; without one there is nothing to place.
    Log(logging::Debug, "Widget \"" + widgetID + "\" has no interface to appear in");
    return Void();
}

// ---------------------------------------------------------------------------------------------------
// The format before beta 4: a run of inline functions with a "type" key, and one version assignment.

void Serializer::DeserializeOld(const util::String& text)
{
    script::Parser* parser = script::Parser::GetInstancePtr();
    script::ClosurePtr closure =
        QLEX_NEW new script::Closure("Deserialize_closure", parser->GetRootClosure());
    script::CodeBlockPtr block = parser->Parse(text);
    if (!block)
        return;
    FileInfo::GetInstancePtr()->m_version = 0;

    std::vector<EntitySerializer> stages[STAGE_COUNT];
    for (const script::ExpressionPtr& statement : block->GetExpressions())
    {
        try
        {
            if (util::dynamic_pointer_cast<script::FunctionDeclaration>(statement))
            {
                util::SharedPtr<script::Function> function =
                    util::dynamic_pointer_cast<script::Function>(statement->Evaluate(closure));
                QLEX_DATA_ASSERT(function);
                function->Call(script::ObjectList());
                EntitySerializer record(function->GetLastCallClosure());
                const RecordKind* kind = KindOfOldType(record.Get<util::String>("type"));
                stages[int(kind ? kind->stage : Stage::Rest)].push_back(record);
            }
            else if (util::dynamic_pointer_cast<script::Assignment>(statement))
            {
                // The one constant of the old format; any other assignment is reported, not run.
                const util::String code = statement->ToCode();
                if (!util::starts_with(code, "version = "))
                {
                    Log(logging::Error, "Unknown constant declared in scene file: " + code);
                    continue;
                }
                statement->Evaluate(closure);
                for (const script::VariablePtr& var : closure->GetVariables())
                {
                    if (var->GetName() == "version")
                        FileInfo::GetInstancePtr()->m_version =
                            script::ObjectToValue<int>(script::ExpandObject(var->GetObject()));
                }
                closure->RemoveVariable("version");
            }
            else
            {
                Log(logging::Error, "Unknown garbage found in scene file: " + statement->ToCode());
            }
        }
        catch (std::exception& e)
        {
            CatchException(e, QLEX_SITE);
            Log(logging::Error, util::String("An error occurred while deserializing: ") + e.what());
        }
    }

    for (int stage = 0; stage < STAGE_COUNT; ++stage)
    {
        for (const EntitySerializer& record : stages[stage])
        {
            try
            {
                const util::String type = record.Get<util::String>("type");
                if (const RecordKind* kind = KindOfOldType(type))
                    (this->*kind->add)(record);
                else
                    Log(logging::Error, "Unknown type: " + type);
            }
            catch (std::exception& e)
            {
                CatchException(e, QLEX_SITE);
                Log(logging::Warning,
                    util::String("Exception caught when loading ") + STAGE_NAMES[stage] + ": " + e.what());
            }
        }
    }
}

} // namespace app
