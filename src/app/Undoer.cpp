#include "app/Undoer.h"

#include "app/Settings.h"
#include "logging/Log.h"
#include "script/Attributes.h"
#include "script/ValueConversions.h"
#include "script/Variable.h"

namespace app
{

namespace
{
const char* const MAX_UNDO_SETTING = "App.maxUndo";
}

Undoer::Undoer() = default;
Undoer::~Undoer() = default;

void Undoer::Do(util::SharedPtr<Action> action)
{
    QLEX_ASSERT(action);
    m_redo.clear();
    action->Do();
    Push(m_undo, action);
    m_onChange.CallAll();
}

void Undoer::AddUndo(util::SharedPtr<Action> action)
{
    QLEX_ASSERT(action);
    m_redo.clear();
    Push(m_undo, action);
    m_onChange.CallAll();
}

void Undoer::AddUndo(SnapshotPtr before, const char* name)
{
    m_redo.clear();
    SnapshotPtr after = Snapshot::TakeSnapshot();
    Push(m_undo, QLEX_NEW new SnapshotRestorer(before, name, after));
    m_onChange.CallAll();
}

void Undoer::Undo()
{
    Move(m_undo, m_redo, &Action::Undo, "Undo");
}

void Undoer::Redo()
{
    Move(m_redo, m_undo, &Action::Redo, "Redo");
}

void Undoer::Move(Stack& from, Stack& to, void (Action::*apply)(), const char* name)
{
    if (from.empty())
        return;
    util::SharedPtr<Action> action = from.back();
    from.pop_back();
    try
    {
        (action.get()->*apply)();
        Push(to, action);
    }
    catch (std::exception& e)
    {
        CatchException(e, QLEX_SITE);
        Log(logging::Warning,
            util::String("Exception caught in Undoer::") + name + ": " + e.what() + "\n" + QLEX_SITE);
    }
    catch (...)
    {
        Log(logging::Warning, util::String("Unknown error in Undoer::") + name + "\n" + QLEX_SITE);
    }
    m_onChange.CallAll();
}

util::SharedPtr<Action> Undoer::GetNextUndo() const
{
    return m_undo.empty() ? util::SharedPtr<Action>() : m_undo.back();
}

util::SharedPtr<Action> Undoer::GetNextRedo() const
{
    return m_redo.empty() ? util::SharedPtr<Action>() : m_redo.back();
}

void Undoer::Clear()
{
    m_undo.clear();
    m_redo.clear();
    m_onChange.CallAll();
}

void Undoer::AddOnChangeCallback(util::SharedPtr<util::Callback> callback)
{
    m_onChange.Add(callback);
}

unsigned long Undoer::MaxUndo() const
{
    script::VariablePtr setting = FindSetting(MAX_UNDO_SETTING);
    if (!setting)
        return DEFAULT_MAX_UNDO;
    if (auto* attrib = dynamic_cast<script::TAttrib<unsigned long>*>(setting.get()))
        return attrib->Get();
    try
    {
        return script::ObjectToValue<unsigned long>(script::ExpandObject(setting->GetObject()));
    }
    catch (std::exception&)
    {
        return DEFAULT_MAX_UNDO;
    }
}

void Undoer::OnMaxUndoChange()
{
    Trim(m_undo);
    Trim(m_redo);
    m_onChange.CallAll();
}

void Undoer::Push(Stack& stack, util::SharedPtr<Action> action)
{
    stack.push_back(action);
    Trim(stack);
}

void Undoer::Trim(Stack& stack)
{
    const unsigned long limit = MaxUndo();
    while (stack.size() > limit)
        stack.pop_front();
}

} // namespace app
