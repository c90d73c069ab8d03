#include "app/entities/Entity.h"

#include "app/AppSettings.h"
#include "app/Camera.h"
#include "app/Chain.h"
#include "app/EntitySerializer.h"
#include "app/FileInfo.h"
#include "app/Scene.h"
#include "app/Snapshot.h"
#include "app/Undoer.h"
#include "logging/Log.h"
#include "script/ValueConversions.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace app
{
const float Entity::NO_DEPTH = std::numeric_limits<float>::infinity();
const std::uint32_t Entity::BAD_ID = std::uint32_t(-1);
std::uint32_t Entity::s_idCounter = 0;

float LimitPrecision(float c)
{
    return std::floor(c * 1000.0f + 0.5f) / 1000.0f;
}

Entity::Entity() : m_id(s_idCounter++)
{
    SetColor(AppSettings::GetInstancePtr()->RandomEntityColor4());
    const util::WeakPtr<Entity> self(this);
    input::ButtonInput* destroy = &m_buttonDestroy;
    input::ButtonInput* mirror = &m_buttonMirror;
    m_buttonDestroy.AddOnPressCallback(
        QLEX_NEW new util::Callback([destroy, self] { DestroyByButton(destroy, self); }, this));
    m_buttonMirror.AddOnPressCallback(
        QLEX_NEW new util::Callback([mirror, self] { MirrorByButton(mirror, self); }, this));
}

Entity::~Entity() = default;

void Entity::Update(float) {}

bool Entity::IsAlive() const
{
    return true;
}

void Entity::StartTransform()
{
    m_inTransform = true;
}

void Entity::EndTransform()
{
    m_inTransform = false;
}

float Entity::CalcEnergy() const
{
    return 0.0f;
}

bool Entity::IsInView(const math::BoundingBox2& view) const
{
    return math::Intersects(GetAABB(), view);
}

void Entity::CopyFrom(const Entity* source)
{
    QLEX_ASSERT(source);
    m_color = source->m_color;
    m_zDepth = source->m_zDepth;
    m_buttonDestroy.AssignKeys(source->m_buttonDestroy);
    m_buttonDestroy.SetToggle(source->m_buttonDestroy.GetToggle());
    m_buttonMirror.AssignKeys(source->m_buttonMirror);
    m_buttonMirror.SetToggle(source->m_buttonMirror.GetToggle());
}

namespace
{
// Components live in 0..1; what lies outside (a hand-made file, a script) is brought into it.
float ColorComponent(float c)
{
    if (!(c >= 0.0f))
        return 0.0f;
    return LimitPrecision(std::min(c, 1.0f));
}
} // namespace

void Entity::SetColor(math::Vec4 color)
{
    m_color = math::Vec4(ColorComponent(color.x), ColorComponent(color.y), ColorComponent(color.z),
                         ColorComponent(color.w));
}

bool Entity::HasScaleTransform() const
{
    return m_scaleTransform != math::Mat3::Identity();
}

void Entity::ClearScaleTransform()
{
    m_scaleTransform = math::Mat3::Identity();
}

void Entity::SerializeTo(EntitySerializer& serializer) const
{
    serializer.SerializeAttributes(*this);
    serializer.Set("color", m_color);
    serializer.Set("entityID", static_cast<unsigned long>(m_id));
    serializer.Set("zDepth", m_zDepth);
    // A link whose place another entity took (two records of one place in a hand-made file) is in no chain
    // any more: an index of -1 wouldn't read back.
    const int chainNr = m_chain ? m_chain->IndexOf(util::SharedPtr<const Entity>(this)) : -1;
    if (chainNr >= 0)
    {
        serializer.Set("chain", static_cast<unsigned long>(m_chain->GetID()));
        serializer.Set("chainNr", chainNr);
    }
    if (m_buttonDestroy.IsBound())
        serializer.Set("buttonDestroy", util::String(m_buttonDestroy.Serialize()));
    if (m_buttonMirror.IsBound())
        serializer.Set("buttonMirror", util::String(m_buttonMirror.Serialize()));
}

void Entity::Deserialize(const EntitySerializer& serializer)
{
    serializer.DeserializeAttributes(*this);
    if (serializer.Has("color"))
    {
        // Files from before beta 4 store colours without alpha.
        if (FileInfo::GetInstancePtr()->m_version >= FileInfo::VERSION_BETA_4)
            SetColor(serializer.Get<math::Vec4>("color"));
        else
        {
            const math::Vec3 rgb = serializer.Get<math::Vec3>("color");
            SetColor(math::Vec4(rgb.x, rgb.y, rgb.z, 1.0f));
        }
    }
    if (serializer.Has("zDepth"))
    {
        // Infinite depth is an entity's "no depth yet"; NaN would break the scene's ordering.
        const float depth =
            script::ObjectToValue<float>(script::ExpandObject(serializer.GetObject("zDepth")));
        QLEX_DATA_ASSERT(!math::IsNaN(depth));
        m_zDepth = depth;
    }
    if (serializer.Has("tracked") && serializer.Get<bool>("tracked"))
        TrackWithCamera();
    if (serializer.Has("buttonDestroy"))
        m_buttonDestroy.Deserialize(serializer.Get<util::String>("buttonDestroy"));
    if (serializer.Has("buttonMirror"))
        m_buttonMirror.Deserialize(serializer.Get<util::String>("buttonMirror"));
}

void Entity::TrackWithCamera()
{
    // The record is read before the entity enters the scene; the group's centre is known already.
    Scene::GetInstancePtr()->SetTrackedGroup(QLEX_NEW new Group(EntityPtr(this)));
}

void DestroyByButton(input::ButtonInput* button, util::WeakPtr<Entity> entity)
{
    if (!button->IsBound())
        return;
    const EntityPtr self = entity.lock();
    Scene* scene = Scene::GetInstancePtr();
    if (!self || !scene->HasEntity(self))
        return;
    // All entities bound to the same combination go together, for one undo step.
    const std::vector<EntityPtr> entities = scene->GetEntities();
    SnapshotPtr snapshot;
    for (const EntityPtr& e : entities)
    {
        if (!(e->m_buttonDestroy == *button))
            continue;
        if (!snapshot)
            snapshot = Snapshot::TakeSnapshot();
        scene->RemoveEntity(e);
    }
    if (snapshot)
        Undoer::GetInstancePtr()->AddUndo(snapshot, "UndoDestroy");
}

void MirrorByButton(input::ButtonInput* button, util::WeakPtr<Entity> entity)
{
    const EntityPtr self = entity.lock();
    if (!self || !button->IsBound() || !Scene::GetInstancePtr()->HasEntity(self))
        return;
    AppSettings::GetInstancePtr()->MirrorMe(*button, self);
}

} // namespace app
