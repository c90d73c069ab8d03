#pragma once
// One step of the history. Nearly every step works by whole snapshots of the scene: undo and redo
// restore one of them, and no operation needs an inverse of its own.

#include "app/Snapshot.h"
#include "util/HashMap.h"
#include "util/SharedPtr.h"
#include "util/String.h"

namespace app
{
class Entity;

class Action : public util::Pointee
{
public:
    // `name` is a language key starting with "Undo", always a literal.
    explicit Action(const char* name) : m_name(name) {}
    ~Action() override;

    virtual void Do() = 0;
    virtual void Undo() = 0;
    virtual void Redo() { Do(); }

    const char* GetKey() const { return m_name; }
    // The text that the undo and redo buttons show.
    util::String Name() const;

private:
    const char* m_name;
};

// The common step: the state before and after an edit that has already happened.
class SnapshotRestorer : public Action
{
public:
    SnapshotRestorer(SnapshotPtr before, const char* name, SnapshotPtr after);
    void Do() override;
    void Undo() override;

private:
    SnapshotPtr m_before;
    SnapshotPtr m_after;
};

// A mark in the history: undo and redo both return to the moment it was made.
class SnapshotAction : public Action
{
public:
    SnapshotAction();
    void Do() override {}
    void Undo() override;
    void Redo() override;

private:
    SnapshotPtr m_snapshot;
};

// Starting the simulation: undo stops it at the moment of the start.
class SimStart : public Action
{
public:
    SimStart();
    void Do() override;
    void Undo() override;
    void Redo() override;

private:
    SnapshotPtr m_snapshot;
};

class EraseEntities : public Action
{
public:
    explicit EraseEntities(const util::HashSet<util::SharedPtr<Entity>>& entities);
    // Joints and pens leave before the shapes they hang on.
    void Do() override;
    void Undo() override;

private:
    SnapshotPtr m_snapshot;
    util::HashSet<util::SharedPtr<Entity>> m_entities;
};

} // namespace app
