#pragma once
// A named set of entities: the selection ("selected"), what the camera follows ("tracked"), the named
// groups saved with a scene, and the argument of nearly every operation on several entities.

#include "app/entities/Entity.h"
#include "math/Math.h"
#include "util/Callback.h"
#include "util/HashMap.h"
#include "util/String.h"

#include <optional>
#include <vector>

namespace app
{
class EntitySerializer;
class Group;
typedef util::SharedPtr<Group> GroupPtr;

extern const char* const SelectedName;
extern const char* const TrackedName;

class Group : public util::Pointee
{
public:
    Group();
    explicit Group(const util::String& name);
    explicit Group(const EntitySet& entities);
    explicit Group(const EntityPtr& entity);

    const util::String& GetName() const { return m_name; }
    void SetName(const util::String& name) { m_name = name; }

    // Every change of membership runs the change callbacks; adding a member again does too.
    void Add(const EntityPtr& entity);
    // Whether it was a member; the callbacks run only then.
    bool Remove(const EntityPtr& entity);
    void Clear();
    void AddAll(const EntitySet& entities);
    void AddAll(const GroupPtr& group);
    void RemoveAll(const EntitySet& entities);
    void RemoveAll(const GroupPtr& group);
    void Set(const EntitySet& entities);
    void Set(const GroupPtr& group);
    // Each member with an entry leaves, and its replacement enters.
    void Update(const util::HashMap<EntityPtr, EntityPtr>& replacements);
    // Drops the members that the scene no longer holds; returns how many.
    size_t Trim();

    bool Contains(const EntityPtr& entity) const;
    bool ContainsAny(const EntitySet& entities) const;
    bool ContainsAll(const EntitySet& entities) const;
    EntityPtr GetFirst() const;
    std::vector<unsigned long> GetEnityIDs() const;
    template <class T> bool AreAll() const;
    template <class T> util::HashSet<util::SharedPtr<T>> GetAllAsSet() const;
    const EntitySet& GetEntities() const { return m_entities; }
    size_t Size() const { return m_entities.size(); }
    bool IsEmpty() const { return m_entities.empty(); }

    GroupPtr ShallowClone() const;
    // The entities in exactly one of the two groups.
    static GroupPtr XOR(const GroupPtr& a, const GroupPtr& b);
    // "Box", "3 Circles" and the like, for the user.
    util::String GetDescriptiveName() const;

    // The union of the members' finite boxes; empty when none is finite.
    math::BoundingBox2 CalcFiniteAABB() const;
    math::OBB2D CalcFiniteOBB() const;
    // The centre of area of the shapes; the box centre, or the mouse, when there is none.
    math::Vec2 CalcCenterByWeight() const;
    // The point where the group hangs on the rest of the scene, if there is exactly one.
    std::optional<math::Vec2> CalcScaleCenter() const;
    math::Vec2 CalcRotationCenter() const;

    // Moves every shape of the group onto the world body; whether anything changed.
    bool GlueToBackground();
    // Reflection in the vertical line through the rotation centre.
    void Mirror();

    // "name" into the record; the members are written by the serializer.
    void SerializeTo(EntitySerializer& record) const;
    void Deserialize(const EntitySerializer& record);

    void AddOnChangeCallback(const util::CallbackPtr& callback) { m_onChange.Add(callback); }

private:
    util::String m_name;
    EntitySet m_entities;
    util::CallbackSet m_onChange;
};

// The groups in the order they were made: a set's own order follows their addresses, which differ from run
// to run.
std::vector<GroupPtr> InOrderOfMaking(const util::HashSet<GroupPtr>& groups);

} // namespace app
