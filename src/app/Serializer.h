#pragma once
// Scene files and qlexlets. A file is a script: reading it runs it, and its statements call the
// commands "Scene.addBox", "Scene.addHinge" and so on that this class owns, each with an inline function
// whose assignments are the object's keys. Ids in a file only name objects within that file; the tables
// here translate them into live objects while it is read.

#include "app/EntitySerializer.h"
#include "app/Group.h"
#include "math/Math.h"
#include "physics/Body.h"
#include "script/ScriptFwd.h"
#include "util/HashMap.h"
#include "util/Singleton.h"

#include <vector>

namespace app
{
class Chain;
class GeomEntity;
class JointEntity;

class Serializer : public util::Pointee, public util::Singleton<Serializer>
{
public:
    Serializer();
    ~Serializer() override;

    util::String SerializeScene();
    // The meta data and the group's entities.
    util::String SerializeQlexlet(const GroupPtr& group);
    // Reads a scene, a qlexlet or a file of the old format; returns the group of what was added.
    GroupPtr Deserialize(const util::String& text);

    // The settings a scene writes, in writing order.
    std::vector<script::VariablePtr> GetVarList(bool all, bool withCamera);
    script::ExpressionPtr SerializeGroup(const GroupPtr& group);
    // Makes an entity that a snapshot restores known to groups that name it by id.
    void RegisterEntity(const EntityPtr& entity);
    // Forgets the ids of earlier reads: only the world's geom and body stay known.
    void ClearTables();
    // What the commands added since the last Deserialize began.
    const GroupPtr& GetAddedGroup() const { return m_addedGroup; }

    // The commands, each with the record read from an inline function.
    script::ObjectPtr AddPlane(const EntitySerializer& record);
    script::ObjectPtr AddCircle(const EntitySerializer& record);
    script::ObjectPtr AddPolygon(const EntitySerializer& record);
    script::ObjectPtr AddBox(const EntitySerializer& record);
    script::ObjectPtr AddFixjoint(const EntitySerializer& record);
    script::ObjectPtr AddHinge(const EntitySerializer& record);
    script::ObjectPtr AddSpring(const EntitySerializer& record);
    script::ObjectPtr AddPen(const EntitySerializer& record);
    script::ObjectPtr AddWater(const EntitySerializer& record);
    script::ObjectPtr AddGroup(const EntitySerializer& record);
    script::ObjectPtr AddWidget(const EntitySerializer& record);

    static const char* const SCENE_HEADER;
    static const char* const QLEXLET_HEADER;

private:
    typedef script::ObjectPtr (Serializer::*Member)(const EntitySerializer&);

    script::ObjectPtr Helper(Member member, const script::ObjectPtr& argument);
    void AddGeomEntity(const EntitySerializer& record, const util::SharedPtr<GeomEntity>& entity,
                       bool onWorldByDefault);
    void AddEntityPostSerialize(const EntitySerializer& record, const EntityPtr& entity);
    void CheckChain(const EntitySerializer& record, const EntityPtr& entity);
    // False when the joint can't be attached; it is then not added.
    bool AttachJoint(const EntitySerializer& record, const util::SharedPtr<JointEntity>& joint);
    void DeserializeOld(const util::String& text);

    util::HashMap<int, util::SharedPtr<physics::Geom>> m_geoms;
    util::HashMap<unsigned long, util::SharedPtr<Chain>> m_chains;
    util::HashMap<unsigned long, EntityPtr> m_entities;
    util::HashMap<unsigned long, util::SharedPtr<physics::Body>> m_bodies;
    util::HashMap<util::SharedPtr<physics::Geom>, math::Mat2D> m_planes;
    GroupPtr m_addedGroup;
};

// Title, author and description of the file (from the scene's where the file's are empty), then the
// version.
std::vector<script::VariablePtr> GetMetaVarList(bool all);

template <class Container>
void SerializeEntities(const script::CodeBlockPtr& block, const Container& entities);
void SerializeEntity(const script::CodeBlockPtr& block, const util::String& command, const EntityPtr& entity,
                     const physics::Body::GeomSet& geoms);

} // namespace app
