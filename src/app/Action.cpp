#include "app/Action.h"

#include "app/Language.h"
#include "app/Scene.h"
#include "app/entities/GeomEntity.h"
#include "physics/Simulation.h"

namespace app
{

Action::~Action() = default;

util::String Action::Name() const
{
    return Language::GetInstancePtr()->Get(m_name);
}

SnapshotRestorer::SnapshotRestorer(SnapshotPtr before, const char* name, SnapshotPtr after)
    : Action(name), m_before(before), m_after(after)
{
    QLEX_ASSERT(m_before && m_after);
}

void SnapshotRestorer::Do()
{
    m_after->Restore();
}

void SnapshotRestorer::Undo()
{
    m_before->Restore();
}

SnapshotAction::SnapshotAction() : Action("UndoSnapshot"), m_snapshot(Snapshot::TakeSnapshot()) {}

void SnapshotAction::Undo()
{
    m_snapshot->Restore();
}

void SnapshotAction::Redo()
{
    m_snapshot->Restore();
}

SimStart::SimStart() : Action("UndoSimStart"), m_snapshot(Snapshot::TakeSnapshot()) {}

void SimStart::Do()
{
    physics::Simulation::GetInstancePtr()->m_running = true;
}

void SimStart::Undo()
{
    m_snapshot->Restore();
    physics::Simulation::GetInstancePtr()->m_running = false;
}

void SimStart::Redo()
{
    m_snapshot->Restore();
    physics::Simulation::GetInstancePtr()->m_running = true;
}

EraseEntities::EraseEntities(const util::HashSet<util::SharedPtr<Entity>>& entities)
    : Action("UndoErase"), m_entities(entities)
{
}

void EraseEntities::Do()
{
    m_snapshot = Snapshot::TakeSnapshot();
    std::vector<EntityPtr> geometry;
    std::vector<EntityPtr> rest;
    for (const EntityPtr& entity : m_entities)
    {
        if (dynamic_cast<GeomEntity*>(entity.get()))
            geometry.push_back(entity);
        else
            rest.push_back(entity);
    }
    Scene* scene = Scene::GetInstancePtr();
    for (const EntityPtr& entity : rest)
        scene->RemoveEntity(entity);
    for (const EntityPtr& entity : geometry)
        scene->RemoveEntity(entity);
}

void EraseEntities::Undo()
{
    if (m_snapshot)
        m_snapshot->Restore();
}

} // namespace app
