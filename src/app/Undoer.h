#pragma once
// The history of the document: two stacks of actions, the newest at the back. Each stack holds at most
// the application's "maxUndo" steps; the oldest go first.

#include "app/Action.h"
#include "util/Callback.h"
#include "util/Singleton.h"

#include <deque>

namespace app
{

class Undoer : public util::Pointee, public util::Singleton<Undoer>
{
public:
    static constexpr unsigned long DEFAULT_MAX_UNDO = 25;

    Undoer();
    ~Undoer() override;

    // Runs the action, then keeps it; the redo stack empties.
    void Do(util::SharedPtr<Action> action);
    // Keeps an action that has already happened.
    void AddUndo(util::SharedPtr<Action> action);
    // The usual end of an edit: `before` was taken before it, the present state is the after.
    void AddUndo(SnapshotPtr before, const char* name);
    void Undo();
    void Redo();

    util::SharedPtr<Action> GetNextUndo() const;
    util::SharedPtr<Action> GetNextRedo() const;
    size_t GetUndoCount() const { return m_undo.size(); }
    size_t GetRedoCount() const { return m_redo.size(); }
    // Forgets all steps (a new history for a fresh document); the callbacks run.
    void Clear();

    void AddOnChangeCallback(util::SharedPtr<util::Callback> callback);

    // The attribute "App.maxUndo" where it exists, else the default.
    unsigned long MaxUndo() const;
    // Trims both stacks to MaxUndo(): the change callback of that attribute.
    void OnMaxUndoChange();

private:
    typedef std::deque<util::SharedPtr<Action>> Stack;

    // Undo and redo alike: the newest action of `from` is applied and, if that succeeds, moves to `to`.
    void Move(Stack& from, Stack& to, void (Action::*apply)(), const char* name);
    void Push(Stack& stack, util::SharedPtr<Action> action);
    void Trim(Stack& stack);

    Stack m_undo;
    Stack m_redo;
    util::CallbackSet m_onChange;
};

} // namespace app
