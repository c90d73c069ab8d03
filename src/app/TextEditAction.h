#pragma once
// Text edits of the toolkit as steps of the document's history: the toolkit hands each edit to the sink
// that the application registers, and the step restores the text and selection of before or after.

#include "app/Action.h"
#include "gui/components/AutoUndoer.h"

namespace app
{

class TextEditAction : public Action
{
public:
    explicit TextEditAction(util::SharedPtr<gui::TextEditUndoer> edit);
    void Do() override { m_edit->Do(); }
    void Undo() override { m_edit->Undo(); }
    void Redo() override { m_edit->Redo(); }

    const util::SharedPtr<gui::TextEditUndoer>& GetEdit() const { return m_edit; }

private:
    util::SharedPtr<gui::TextEditUndoer> m_edit;
};

// Puts the edits of the toolkit into Undoer's history while the application lives: App registers it
// when made and withdraws it when it goes.
class TextUndoSink : public gui::TextUndoSink
{
public:
    void AddUndo(util::SharedPtr<gui::TextEditUndoer> edit) override;
    bool IsNewest(const gui::TextEditUndoer& edit) const override;

    static void Register();
    static void Unregister();
};

} // namespace app
